// SPDX-License-Identifier: MIT
#pragma once

#include "options/frmOptions.h"

#include <string>

namespace kel {

/// What a view does for a decision of its user. It is asked in this order.
class DecisionView {
public:
    virtual ~DecisionView() = default;

    /// The number field that the user is in; nothing if there is none.
    [[nodiscard]] virtual const PowerEdit* field() = 0;

    /// Does what leaving that field does. False if there is no number in it: the user has been told, and is still
    /// there.
    [[nodiscard]] virtual bool leaveField() = 0;

    /// Shows a sentence about the number in it that was put right, and selects that.
    virtual void showCorrection(const std::string& sentence) = 0;

    /// Shows the form as it is now.
    virtual void showForm() = 0;

    /// Asks whether the changes of these lines may be saved.
    [[nodiscard]] virtual bool allows(const std::string& changes) = 0;
};

/// A button works while a field still has the focus: whether what is in it counts as it is. A number that was put right
/// is to be seen before OK saves it.
inline bool fieldCounts(frmOptions& form, DecisionView& view, bool isOk)
{
    const PowerEdit* const field = view.field();
    if (!field)
        return true;
    const std::string typed = field->Text();
    if (!view.leaveField())
        return false;
    const std::string corrected = isOk ? form.Aids().corrected(*field, typed) : std::string();
    if (!corrected.empty())
        view.showCorrection(corrected);
    return corrected.empty();
}

/// Whether a button of the form may do its work at once. Before OK the user is asked about what would change although
/// nobody has touched it.
inline bool mayWork(frmOptions& form, const PowerButton& button, DecisionView& view)
{
    if (&button == &form.cmdCancel)
        return true;
    const bool isOk = &button == &form.cmdOK;
    if (!fieldCounts(form, view, isOk))
        return false;
    if (!isOk)
        return true;
    const std::string changes = form.Aids().unsoughtChanges();
    view.showForm(); // ports may have come
    return changes.empty() || view.allows(changes);
}

/// The button of the reader's test stops one that runs. Whether it is to start one instead.
inline bool mayTest(frmOptions& form, DecisionView& view)
{
    if (!form.Aids().testsReader())
        return fieldCounts(form, view, false);
    form.Aids().stopTest();
    return false;
}

} // namespace kel
