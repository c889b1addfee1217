// SPDX-License-Identifier: MIT
#pragma once

#include "python/Session.h"

#include <memory>

namespace kel::python {

/// A sheet as the interpreter has it.
struct SheetView {
    std::shared_ptr<HeldSheet> held;
    std::weak_ptr<ReaderSession> session; ///< that of a reader, not of a replay
};

/// The next sheet of a session, or None. `warn` is called if something was reported that has ended nothing.
template <class OfSession>
pybind11::object nextSheet(const std::shared_ptr<OfSession>& session, const pybind11::object& warn)
{
    // What can be made before the wait keeps no sheet waiting.
    pybind11::object object = pybind11::cast(SheetView{});
    auto& view = object.cast<SheetView&>();
    if constexpr (std::is_same_v<OfSession, ReaderSession>)
        view.session = session;
    view.held = session->next();
    if (!view.held)
        return pybind11::none();
    if (session->hasNotes())
        warn();
    return object;
}

} // namespace kel::python
