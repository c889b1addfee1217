// What the window looks like in the language of the process ("/L=German"): no text is cut off, the columns line up,
// and pictures for a person to look at.

#include "tests/options/qt/DrivenDialog.h"

#include "platform/posix/PosixProcess.h"

#include <filesystem>
#include <set>

namespace kel::test {
namespace {

class TextsTest : public testing::Test {
protected:
    TextsTest() { host.machine.process().commandLine(PosixProcess().CommandLine()); }

    /// The language of the process, as the pictures are named after it.
    static std::string language()
    {
        const std::string line = PosixProcess().CommandLine();
        const std::size_t option = line.find("/L=");
        return option == std::string::npos ? "English" : line.substr(option + 3, line.find(' ', option) - option - 3);
    }

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

TEST_F(TextsTest, Pictures)
{
    const std::filesystem::path folder = KEL_PICTURES;
    std::filesystem::create_directories(folder);
    DrivenDialog::run(host, [&](OpenWindow& window) {
        auto& models = window.get<QComboBox>("cboReaderType");
        for (const char* const name :
             {"Scantron Scanmark 4000", "Scantron OpScan 4/4U", "Scantron EZData", "Sekonic SR3500 (USB)"}) {
            models.setCurrentText(name);
            models.setFocus();
            QCoreApplication::processEvents();
            const std::string file = QString(name).replace('/', '-').replace(' ', '_').toStdString();
            const std::filesystem::path picture = folder / (file + "_" + language() + ".png");
            EXPECT_TRUE(window.window().grab().save(QString::fromStdString(picture.string())));
        }
    });
}

} // namespace
} // namespace kel::test
