// SPDX-License-Identifier: MIT
#include "options/OptionsPresenterFactory.h"

#include "types/RuntimeFailure.h"

#include <mutex>
#include <utility>

namespace kel {

namespace {

/// The presenter in use. Never destroyed by the end of the process: the code of a host's presenter, or of a module, may
/// be gone before this one.
struct Presenters {
    std::mutex mutex;
    std::shared_ptr<OptionsPresenter> host;
    std::shared_ptr<OptionsPresenter> own;
    OptionsPresenterFactory factory = nullptr;
};

Presenters& presenters()
{
    static auto* const place = new Presenters;
    return *place;
}

} // namespace

void setOptionsPresenter(std::shared_ptr<OptionsPresenter> presenter)
{
    const std::lock_guard lock(presenters().mutex);
    presenters().host.swap(presenter);
}

void setOptionsPresenterFactory(OptionsPresenterFactory factory)
{
    const std::lock_guard lock(presenters().mutex);
    presenters().factory = factory;
    presenters().own.reset();
}

std::shared_ptr<OptionsPresenter> optionsPresenter()
{
    const std::lock_guard lock(presenters().mutex);
    Presenters& all = presenters();
    if (all.host)
        return all.host;
    if (!all.own && all.factory)
        all.own = all.factory();
    if (!all.own)
        throw RuntimeFailure(FailureCode::ErrorLoadingLibrary,
                             "There is nothing here that could show the options dialog.");
    return all.own;
}

} // namespace kel
