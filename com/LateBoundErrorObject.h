// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "com/LateBound.h"
#include "com/TypeName.h"
#include "failure/ErrorReport.h"
#include "failure/TypeName.h"

#include <oaidl.h>

namespace kel::com {

/// The host's error object by the names of its members: `Silent`, `RaiseError` and `SetFont`. Reports may come from
/// other apartments than the one that has registered it; they reach it there.
class LateBoundErrorObject final : public ErrorObject, public StandsForAnother {
public:
    explicit LateBoundErrorObject(ComPtr<IDispatch> object);
    LateBoundErrorObject(const LateBoundErrorObject&) = delete;
    LateBoundErrorObject& operator=(const LateBoundErrorObject&) = delete;
    ~LateBoundErrorObject() override;

    [[nodiscard]] Boolean Silent() override;
    void Silent(Boolean value) override;
    Int32 RaiseError(const ErrorReport& report) override;
    /// `form` is the window of the dialog; the host's object gets an object with the member `hWnd`.
    void SetFont(void* form) override;
    [[nodiscard]] std::string TypeName() const override;

    /// Whether the calling thread is the one that has registered the object.
    [[nodiscard]] bool isOfThisThread() const noexcept { return thread_ == GetCurrentThreadId(); }

private:
    [[nodiscard]] LateBound object() const;

    ComPtr<IDispatch> object_;
    DWORD thread_;
    DWORD cookie_ = 0; // in the system's table for other apartments; 0 if the object cannot go there
};

} // namespace kel::com
