// SPDX-License-Identifier: MIT
#pragma once

#include "options/OptionsPresenter.h"
#include "options/WindowPlace.h"

#include <memory>

namespace kel {

/// The module that shows the options dialog, and what it exports: a new presenter, which the caller owns, and which
/// saves the position of its window.
inline constexpr const char* kOptionsModuleName = "libKELReader81U_options_qt.so";
inline constexpr const char* kNewOptionsPresenterName = "kelNewOptionsPresenter";
using NewOptionsPresenter = OptionsPresenter* (*)(WindowPlace& place);

/// Loads the module from beside the component. It stays loaded. 48 "Error in loading DLL" if it is not there, or the
/// toolkit that it needs.
[[nodiscard]] std::shared_ptr<OptionsPresenter> loadOptionsModule();

} // namespace kel
