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

/// The next sheet of a session, or None.
template <class OfSession>
pybind11::object nextSheet(const std::shared_ptr<OfSession>& session)
{
    const std::shared_ptr<HeldSheet> sheet = session->next();
    if (!sheet)
        return pybind11::none();
    SheetView view{sheet, {}};
    if constexpr (std::is_same_v<OfSession, ReaderSession>)
        view.session = session;
    return pybind11::cast(std::move(view));
}

} // namespace kel::python
