// SPDX-License-Identifier: MIT
#pragma once

#include "profiles/clsKELReaderProfile.h"
#include "types/Boolean.h"
#include "types/Enumerations.h"
#include "types/Export.h"
#include "types/Hidden.h"
#include "types/Numbers.h"
#include "types/Reference.h"

#include <string_view>

namespace kel {

struct CatalogueModel;

/// The capability records of the models, in the order of the catalogue. A new collection has all of them.
///
/// A text is an index by key: the decimal text of a record's `kelReaderType`, "40". A number is a position from 1,
/// also where it comes from a `kelReaderType`: `Item("40")` and `Item(2)` are the same record.
///
/// Records are returned by reference. A host's changes to one stay until the collection is filled again.
class KEL_PUBLIC clsKELReaderProfiles {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "clsKELReaderProfiles";

    clsKELReaderProfiles();
    ~clsKELReaderProfiles();
    clsKELReaderProfiles(const clsKELReaderProfiles&) = delete;
    clsKELReaderProfiles& operator=(const clsKELReaderProfiles&) = delete;

    /// Number of records in the collection.
    [[nodiscard]] Int32 Count() const;

    /// The record; a null reference, without a report, if there is none.
    [[nodiscard]] Reference<clsKELReaderProfile> Item(std::string_view Key) const;
    [[nodiscard]] Reference<clsKELReaderProfile> Item(Int32 Position) const;

    /// Whether there is a record of that key or at that position; never a failure.
    [[nodiscard]] Boolean Exists(std::string_view Key) const;
    [[nodiscard]] Boolean Exists(Int32 Position) const;

    /// The makers whose models are in the collection, as bits; the record of `kelReaderTypeNone` is always among them.
    /// Setting fills the collection again if the value changes or if no record is left; the same value does not change
    /// a collection that has records.
    [[nodiscard]] kelProfileType ProfileType() const;
    void ProfileType(kelProfileType value);

    /// Removes a record. One that does not exist is reported: as 5 for a key, as 9 for a position.
    void Remove(std::string_view Key);
    void Remove(Int32 Position);

    /// Removes all records, the last one first.
    void RemoveAll();

private:
    void FillProfiles();
    void Add(const CatalogueModel& model);

    struct Fields;
    Hidden<Fields> fields_;
};

} // namespace kel
