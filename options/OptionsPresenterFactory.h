// SPDX-License-Identifier: MIT
#pragma once

#include "options/OptionsPresenter.h"

#include <memory>

namespace kel {

/// Installs what makes the component's own presenter. Called once at start-up.
using OptionsPresenterFactory = std::shared_ptr<OptionsPresenter> (*)();
void setOptionsPresenterFactory(OptionsPresenterFactory factory);

} // namespace kel
