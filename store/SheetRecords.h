// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "host/Form.h"
#include "pictures/Sheet.h"
#include "store/Entry.h"

namespace kel {

/// A form as pictures show it, for readers in general.
[[nodiscard]] PictureForm pictureForm(const host::Form& form);

/// The same for a model, whose marks and windows are its own.
[[nodiscard]] PictureForm pictureForm(const host::Form& form, kelReaderType model, Int16 threshold);

/// The same for a reader with its settings at the time of a sheet.
[[nodiscard]] PictureForm pictureForm(const Setup& setup);

/// A sheet as pictures show it.
[[nodiscard]] PictureSheet pictureSheet(const host::Sheet& sheet);

} // namespace kel
