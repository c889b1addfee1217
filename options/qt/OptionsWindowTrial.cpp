// SPDX-License-Identifier: MIT
// The button that tests the reader, and what the test says meanwhile.

#include "options/qt/OptionsWindow.h"

#include <algorithm>

namespace kel {

/// It has room for both of its captions.
QPushButton* OptionsWindow::testButton(QWidget* parent)
{
    auto* const button = new QPushButton(parent);
    button->setObjectName("testReader");
    updates_.emplace_back([this, button] {
        const OptionsAids& aids = form_.Aids();
        int widest = 0;
        for (const std::string& caption : {aids.captions().testReader, aids.captions().stopTest}) {
            button->setText(QString::fromStdString(caption));
            widest = std::max(widest, button->sizeHint().width());
        }
        button->setMinimumWidth(widest);
        if (!aids.testsReader())
            button->setText(QString::fromStdString(aids.captions().testReader));
        button->setEnabled(aids.testsReader() || aids.canTestReader());
    });
    connect(button, &QPushButton::clicked, this, [this] { testReader(); });
    return button;
}

void OptionsWindow::testReader()
{
    if (!mayTest(form_, *this))
        return;
    notice_->hide();
    form_.Aids().testReader();
    refresh();
}

/// Shows what the test does and, once it has been stopped, that it was.
void OptionsWindow::showTest()
{
    const OptionsAids& aids = form_.Aids();
    if (!aids.testsReader() && !showsTest_)
        return;
    showsTest_ = aids.testsReader();
    const QString progress = QString::fromStdString(aids.testProgress());
    if (progress.isEmpty())
        notice_->hide();
    else if (notice_->isHidden() || notice_->text() != progress)
        notify(aids.testProgress());
}

} // namespace kel
