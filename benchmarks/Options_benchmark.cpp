// SPDX-License-Identifier: MIT
// The options dialog: from the call to the visible window, and a change of the model.

#include "options/ShowOptions.h"
#include "options/frmOptions.h"
#include "options/qt/OptionsWindow.h"
#include "options/qt/QtOptionsPresenter.h"
#include "platform/posix/PosixPlatform.h"
#include "reader/clsKELReader.h"
#include "simulators/platform/SimulatedPlatform.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTimer>

#include <chrono>
#include <cstdlib>

namespace kel {
namespace {

using Clock = std::chrono::steady_clock;

/// A window that opens in its usual place.
struct UsualPlace final : WindowPlace {
    std::string recall() override { return {}; }
    void keep(const std::string&) override {}
};

/// Shows the window, notes when a user can see it, and cancels.
class NotesTheMoment final : public OptionsPresenter {
public:
    bool show(frmOptions& form, void* parent, std::string& reason) override
    {
        const auto load = form.onLoad;
        form.onLoad = [this, load, &form] {
            load();
            QTimer::singleShot(0, qApp, [this, &form] {
                QCoreApplication::processEvents();
                QWidget* const window = QApplication::activeModalWidget();
                if (window && window->isVisible())
                    visible = Clock::now();
                form.cmdCancel.Click();
            });
        };
        return qt_.show(form, parent, reason);
    }
    Screen* screen() override { return qt_.screen(); }

    Clock::time_point visible{};

private:
    UsualPlace place_;
    QtOptionsPresenter qt_{place_};
};

/// `ShowOptions` on a machine whose 16 ports are all absent, with a new application for each call.
void Options_Show(benchmark::State& state)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    PosixPlatform machine(RegistryFolders("/nonexistent/kelreader"));
    const PlatformScope scope(machine);
    const auto presenter = std::make_shared<NotesTheMoment>();
    setOptionsPresenter(presenter);
    clsKELReader reader;
    reader.LoadDefaults(kelReaderTypeScantronScanMark4000);
    for (auto _ : state) {
        presenter->visible = {};
        const Clock::time_point start = Clock::now();
        showOptionsDialog(reader, nullptr);
        if (presenter->visible == Clock::time_point{})
            state.SkipWithError("no window was seen");
        state.SetIterationTime(std::chrono::duration<double>(presenter->visible - start).count());
    }
    setOptionsPresenter(nullptr);
}
BENCHMARK(Options_Show)->UseManualTime()->Unit(benchmark::kMillisecond);

frmOptions& chooseNext(frmOptions& form)
{
    const Int32 row = form.cboReaderType.CurrentRow() + 1;
    form.cboReaderType.CurrentRow(row < form.cboReaderType.RowCount() ? row : 0);
    return form;
}

/// A change of the model without a window.
void Options_FormChange(benchmark::State& state)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    clsKELReader reader;
    frmOptions form;
    form.SetReader(reader);
    form.Show();
    for (auto _ : state)
        benchmark::DoNotOptimize(chooseNext(form).txtMarkCutOff.Text());
}
BENCHMARK(Options_FormChange)->Unit(benchmark::kMicrosecond);

/// A change of the model in the window that shows it, up to the drawn picture.
void Options_ModelChange(benchmark::State& state)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    int count = 0;
    const QApplication application(count, nullptr);
    clsKELReader reader;
    frmOptions form;
    form.SetReader(reader);
    UsualPlace place;
    OptionsWindow window(form, place, nullptr);
    form.Show();
    window.refresh();
    window.setVisible(true);
    auto* const models = window.findChild<QComboBox*>("cboReaderType");
    for (auto _ : state) {
        models->setCurrentIndex((models->currentIndex() + 1) % models->count());
        QCoreApplication::processEvents();
    }
}
BENCHMARK(Options_ModelChange)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace kel
