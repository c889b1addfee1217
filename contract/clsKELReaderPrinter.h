// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Enumerations.h"
#include "types/Export.h"
#include "types/Hidden.h"
#include "types/Numbers.h"

#include <string>

namespace kel {

/// What is to be imprinted on the current sheet, and what the chosen model's imprinter can do. It does not print: the
/// driver takes it when the sheet is printed on. Nothing here checks the texts or the distance against the bounds.
class KEL_PUBLIC clsKELReaderPrinter {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "clsKELReaderPrinter";

    clsKELReaderPrinter();
    clsKELReaderPrinter(const clsKELReaderPrinter& other);
    clsKELReaderPrinter& operator=(const clsKELReaderPrinter& other);
    ~clsKELReaderPrinter();

    /// The reader model, set by the reader object. On the models with three print lines it also sets
    /// `Distance` to 245.
    void SetType(kelReaderType Value);

    /// The imprinter is in use at all. Stays False on models without one, and unchanged on models that the imprinter
    /// does not concern; so the model is set first.
    [[nodiscard]] Boolean Enabled() const;
    void Enabled(Boolean value);

    /// Whether the current read was asked to prepare the printer.
    [[nodiscard]] Boolean Initialized() const;

    /// Print on the current sheets. Cannot be set, and reads False, while the printer is not enabled.
    [[nodiscard]] Boolean Active() const;
    void Active(Boolean value);

    /// The print lines: one byte for each character, as the printer expects them.
    [[nodiscard]] std::string Buffer1() const;
    void Buffer1(const std::string& text);
    [[nodiscard]] std::string Buffer2() const;
    void Buffer2(const std::string& text);
    [[nodiscard]] std::string Buffer3() const;
    void Buffer3(const std::string& text);

    /// How many of the model's print lines have text.
    [[nodiscard]] Int16 FilledBufferCount() const;
    /// How many print lines the model has: 3, 1 or 0.
    [[nodiscard]] Int16 BufferCount() const;

    /// Where the print begins along the sheet, in the model's own steps.
    [[nodiscard]] Int16 Distance() const;
    void Distance(Int16 value);

    /// Bounds of `Distance` and the length of a line; -1 while the printer is not enabled.
    [[nodiscard]] Int32 MinPosition() const;
    [[nodiscard]] Int32 MaxPosition() const;
    [[nodiscard]] Int32 MaxCharacters() const;

private:
    friend class ReaderSession;
    void Initialized(Boolean value);

    struct Fields;
    Hidden<Fields> fields_;
};

} // namespace kel
