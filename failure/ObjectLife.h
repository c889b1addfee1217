// SPDX-License-Identifier: MIT
#pragma once

namespace kel {

/// The first member of every class of the component: a debugger, if one watches, learns of each object's creation and
/// of its end, and the first object of a process starts the component.
class ObjectLife {
public:
    /// `nameAndKind` is the class's name, a comma, and 1 for a class or 3 for a form: "clsKELReaderProfile,1".
    explicit ObjectLife(const char* nameAndKind);
    /// A copied object is an object of its own.
    ObjectLife(const ObjectLife& other);
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): an object stays itself
    ObjectLife& operator=(const ObjectLife&) { return *this; }
    ~ObjectLife();

    /// For the destructor of an object that has something to release: its end is reported before that.
    void ends();

private:
    void begins();

    const char* nameAndKind_; // null once the end is reported
};

} // namespace kel
