// SPDX-License-Identifier: MIT
#include "store/StoreTrouble.h"

#include "store/SheetStore.h"
#include "store/StoreProblem.h"

namespace kel {

bool untilDone(const SheetStore& store, const StoreTrouble& trouble, Pauses pauses, const std::function<void()>& work)
{
    std::string told;
    for (;;) {
        try {
            work();
            if (!told.empty())
                trouble.over("The store " + store.file().string() + " takes sheets again.");
            return true;
        } catch (const StoreProblem& problem) {
            if (told != problem.what())
                trouble.tell(problem.what());
            told = problem.what();
        }
        if (!trouble.pause(pauses.next()))
            return false;
    }
}

} // namespace kel
