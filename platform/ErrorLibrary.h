// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"
#include "types/Numbers.h"

#include <functional>
#include <memory>
#include <string>

namespace kel {

/// A failure that no procedure has handled, its fields in the order in which an error library expects them.
struct CrashReport {
    Int32 number = 0;          ///< of the failure
    std::string component{};   ///< "KELReader81U"
    std::string module{};      ///< "basScantron"
    std::string procedure{};   ///< "InitReaderST"
    std::string description{}; ///< the failure's text
    Int32 line = 0;            ///< number of the failing statement, 0 if it is not known
    std::string variables{};   ///< the variables of the procedure, of its module and of the process, as tagged text
    std::string version{};     ///< of the component, "8.1.0"
};

/// An error library: an object of the class "KELError10.Error".
class KEL_PUBLIC ErrorLibraryObject {
public:
    virtual ~ErrorLibraryObject() = default;

    /// Receives a report. A failure of the library itself is ignored.
    virtual void ErrorHandler(const CrashReport& report) = 0;

    /// What the user chose to do; it is read after each report, and its value is not used.
    [[nodiscard]] virtual Int32 Action() { return 0; }
};

/// The class by whose name the component creates its error library.
inline constexpr const char* kErrorLibraryClass = "KELError10.Error";

/// Makes an object; null if it cannot.
using ErrorLibraryFactory = std::function<std::shared_ptr<ErrorLibraryObject>()>;

/// Registers what makes the objects of a class, for the whole process. An empty function removes it. A host that
/// wants to learn of failures that no procedure has handled registers its library under `kErrorLibraryClass`: each
/// failure then makes an object and calls it. Without one such a failure appears in a box. The factory and its objects
/// may be used from several threads.
KEL_PUBLIC void registerErrorLibrary(const std::string& className, ErrorLibraryFactory factory);

} // namespace kel
