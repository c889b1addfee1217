// SPDX-License-Identifier: MIT
// What the module exports.

#include "options/qt/QtOptionsPresenter.h"

extern "C" __attribute__((visibility("default"))) kel::OptionsPresenter* kelNewOptionsPresenter(kel::WindowPlace& place)
{
    return new kel::QtOptionsPresenter(place);
}
