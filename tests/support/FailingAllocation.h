// SPDX-License-Identifier: MIT
#pragma once

namespace kel::test {

/// Lets allocations of the calling thread fail: `count` of them, after `first` - 1 that are granted. It replaces
/// `operator new` of the test program, and ends with the object.
class FailingAllocation {
public:
    explicit FailingAllocation(int first = 1, int count = 1);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// The same without an object, until it has come about.
    static void arm(int first = 1, int count = 1);
    static void disarm();

    /// Lets the first allocation fail that is made while an exception is being dealt with: one that is thrown after
    /// this, where one is being dealt with now.
    static void armForHandlers();
};

} // namespace kel::test
