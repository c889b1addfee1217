// SPDX-License-Identifier: MIT
// What the window looks like in the language of the process ("/L=German"): no text is cut off, and the columns line up.
// test_screenshots.py compares the screenshots with those that are kept.

#include "tests/options/qt/DrivenDialog.h"

#include "platform/posix/PosixProcess.h"

#include <QAbstractItemView>

#include <cstdlib>
#include <set>

namespace kel::test {
namespace {

class TextsTest : public testing::Test {
protected:
    TextsTest() { host.machine.process().commandLine(PosixProcess().CommandLine()); }

    OptionsHost host{1, 3};
};

void expectWholeTexts(QWidget& window, const std::string& model)
{
    QCoreApplication::processEvents();
    for (auto* const widget : window.findChildren<QWidget*>()) {
        const bool hasText =
            qobject_cast<QLabel*>(widget) || qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget);
        if (!hasText || !widget->isVisible() || widget->objectName().startsWith("qt_"))
            continue;
        if (const auto* label = qobject_cast<QLabel*>(widget); label && label->wordWrap()) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width())) << model;
            continue;
        }
        EXPECT_GE(widget->width(), widget->sizeHint().width()) << model << widget->objectName().toStdString();
        EXPECT_GE(widget->height(), widget->minimumSizeHint().height()) << model << widget->objectName().toStdString();
        EXPECT_TRUE(window.rect().contains(QRect(widget->mapTo(&window, QPoint()), widget->size())))
            << model << widget->objectName().toStdString();
    }
}

void expectColumn(OpenWindow& window, std::initializer_list<const char*> names)
{
    std::set<int> lefts;
    for (const char* const name : names) {
        auto& widget = window.get<QWidget>(name);
        if (widget.isVisible())
            lefts.insert(widget.mapTo(&window.window(), QPoint()).x());
    }
    EXPECT_LE(lefts.size(), 1U) << *names.begin();
}

TEST_F(TextsTest, NoneIsCutOffWhateverTheModel)
{
    DrivenDialog::run(host, [](OpenWindow& window) {
        auto& models = window.get<QComboBox>("cboReaderType");
        const QSize size = window.window().size();
        for (int row = 0; row < models.count(); ++row) {
            models.setCurrentIndex(row);
            expectWholeTexts(window.window(), models.itemText(row).toStdString() + ": ");
            expectColumn(window, {"txtRecognitionThreshold", "txtMarkDiscrimination", "txtMarkCutOff",
                                  "txtReaderTimeout", "txtSystemPause"});
            expectColumn(window, {"cboPort", "cboBaud", "cboDataBits", "cboParity", "cboStopBits", "cboFlowControl"});
            EXPECT_EQ(window.window().size(), size) << "the window does not jump";
        }
    });
}

/// Puts what a widget shows into the folder that KEL_SCREENSHOTS names; nothing without one.
void save(QWidget& widget, const std::string& name)
{
    QCoreApplication::processEvents();
    const QPixmap shown = widget.grab();
    if (const char* const folder = std::getenv("KEL_SCREENSHOTS")) {
        const QString file = QString("%1/%2.bmp").arg(folder, name.c_str());
        EXPECT_TRUE(shown.toImage().convertToFormat(QImage::Format_RGB32).save(file)) << name;
    }
}

TEST_F(TextsTest, FirstShown)
{
    host.reader().LoadDefaults(kelReaderTypeNCSOpScan4);
    DrivenDialog::run(host, [](OpenWindow& window) { save(window.window(), "first"); });
}

TEST_F(TextsTest, Models)
{
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    DrivenDialog::run(host, [&](OpenWindow& window) {
        auto& models = window.get<QComboBox>("cboReaderType");
        for (const auto model : {kelReaderTypeNCSOpScan4, kelReaderTypeNCSEZData, kelReaderTypeSekonicSR3500,
                                 kelReaderTypeNone, kelReaderTypePDIVMR138}) {
            models.setCurrentText(
                QString::fromStdString(host.reader().Profiles()->Item(std::to_string(model))->ReaderName()));
            save(window.window(), "model" + std::to_string(model));
        }
    });
}

TEST_F(TextsTest, OpenLists)
{
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark4000);
    DrivenDialog::run(host, [&](OpenWindow& window) {
        for (const char* const name :
             {"cboReaderType", "cboPort", "cboBaud", "cboDataBits", "cboParity", "cboStopBits", "cboFlowControl"}) {
            auto& list = window.get<QComboBox>(name);
            list.showPopup();
            save(*list.view()->window(), name);
            list.hidePopup();
        }
    });
}

} // namespace
} // namespace kel::test
