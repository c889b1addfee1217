#include "options/qt/OptionsWindow.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListView>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

namespace kel {

namespace {

/// How many models the list shows at a time.
constexpr int kModelsInView = 20;

/// The title against the other texts.
constexpr double kTitleSize = 1.4;

QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

QFrame* line(QWidget* parent)
{
    auto* const result = new QFrame(parent);
    result->setFrameShape(QFrame::HLine);
    result->setFrameShadow(QFrame::Sunken);
    return result;
}

/// Gives a list the rows of the model, if it has others.
void takeRows(QComboBox& box, const PowerCombo& list)
{
    bool same = box.count() == list.RowCount();
    for (Int32 row = 0; same && row < list.RowCount(); ++row)
        same = box.itemText(row) == text(list.CellText(0, row));
    if (same)
        return;
    box.clear();
    for (Int32 row = 0; row < list.RowCount(); ++row)
        box.addItem(text(list.CellText(0, row)));
}

} // namespace

OptionsWindow::OptionsWindow(frmOptions& form, QWidget* parent) : QDialog(parent), form_(form)
{
    setObjectName("frmOptions");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setSizeGripEnabled(true);

    auto* const page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addWidget(header());
    page->addWidget(line(this));

    auto* const body = new QVBoxLayout;
    const int margin = fontMetrics().height();
    body->setContentsMargins(margin, margin, margin, margin);
    body->setSpacing(margin);
    auto* const model = new QHBoxLayout;
    QComboBox* const models = put(form_.cboReaderType);
    models->setMaxVisibleItems(kModelsInView);
    model->addWidget(put(form_.lblReaderType, models));
    model->addWidget(models, 1);
    body->addLayout(model);
    auto* const boxes = new QHBoxLayout;
    boxes->setSpacing(margin);
    boxes->addWidget(readerBox(), 1);
    boxes->addWidget(portBox(), 1);
    body->addLayout(boxes, 1);
    page->addLayout(body, 1);

    page->addWidget(line(this));
    page->addWidget(buttons());

    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { followFocus(now); });
    form_.onHide = [this] { done(0); };
}

template <class Widget>
Widget* OptionsWindow::enlist(Control& control, Widget* widget)
{
    widget->setObjectName(QString::fromUtf8(control.Name().data(), static_cast<qsizetype>(control.Name().size())));
    controls_.emplace(widget, &control);
    updates_.emplace_back([&control, widget] {
        widget->setEnabled(static_cast<bool>(control.Enabled()));
        widget->setVisible(static_cast<bool>(control.Visible()));
    });
    return widget;
}

QWidget* OptionsWindow::header()
{
    auto* const band = new QWidget(this);
    band->setObjectName("picHeader");
    band->setBackgroundRole(QPalette::Base);
    band->setAutoFillBackground(true);
    auto* const column = new QVBoxLayout(band);
    const int margin = fontMetrics().height();
    column->setContentsMargins(margin, margin * 3 / 4, margin, margin * 3 / 4);
    title_ = put(form_.lblTitle, nullptr);
    column->addWidget(title_);
    column->addWidget(put(form_.lblSubtitle, nullptr));
    return band;
}

QGroupBox* OptionsWindow::readerBox()
{
    QGroupBox* const frame = put(form_.frmReader);
    auto* const grid = new QGridLayout(frame);
    int row = 0;
    for (CheckBox* const box : {&form_.chkFeeder, &form_.chkDuplex, &form_.chkRejecter, &form_.chkReaderGrade,
                                &form_.chkBarcode, &form_.chkPrinter, &form_.chkWindowing})
        grid->addWidget(put(*box), row++, 0, 1, 2);
    const int gap = row++;
    updates_.emplace_back([this, grid, gap] {
        bool any = false;
        for (int option = 0; option < gap; ++option)
            any = any || !grid->itemAtPosition(option, 0)->widget()->isHidden();
        grid->setRowMinimumHeight(gap, any ? fontMetrics().height() / 2 : 0);
    });
    addLine(*grid, row++, form_.lblRecognitionThreshold, put(form_.txtRecognitionThreshold));
    addLine(*grid, row++, form_.lblMarkDiscrimination, put(form_.txtMarkDiscrimination));
    addLine(*grid, row++, form_.lblMarkCutOff, put(form_.txtMarkCutOff));
    addLine(*grid, row++, form_.lblReaderTimeout, put(form_.txtReaderTimeout));
    addLine(*grid, row++, form_.lblSystemPause, put(form_.txtSystemPause));
    grid->setRowStretch(row, 1);
    grid->setColumnStretch(0, 1);
    return frame;
}

QGroupBox* OptionsWindow::portBox()
{
    QGroupBox* const frame = put(form_.frmComPort);
    auto* const grid = new QGridLayout(frame);
    auto* const port = new QWidget(frame);
    auto* const portLine = new QHBoxLayout(port);
    portLine->setContentsMargins(0, 0, 0, 0);
    QComboBox* const ports = put(form_.cboPort);
    portLine->addWidget(ports, 1);
    QPushButton* const locate = put(form_.cmdLocate);
    locate->setAutoDefault(false);
    portLine->addWidget(locate);
    // There is room for the button, whether or not the model has it, so that the window keeps its size.
    updates_.emplace_back([port, portLine, ports, locate] {
        port->setMinimumWidth(ports->minimumSizeHint().width() + portLine->spacing() + locate->sizeHint().width());
    });
    grid->addWidget(put(form_.lblPort, ports), 0, 0);
    grid->addWidget(port, 0, 1);
    addLine(*grid, 1, form_.lblBaud, put(form_.cboBaud));
    addLine(*grid, 2, form_.lblDataBits, put(form_.cboDataBits));
    addLine(*grid, 3, form_.lblParity, put(form_.cboParity));
    addLine(*grid, 4, form_.lblStopBits, put(form_.cboStopBits));
    addLine(*grid, 5, form_.lblFlowControl, put(form_.cboFlowControl));
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(6, 1);
    return frame;
}

QWidget* OptionsWindow::buttons()
{
    auto* const bar = new QWidget(this);
    auto* const row = new QHBoxLayout(bar);
    const int margin = fontMetrics().height();
    row->setContentsMargins(margin, margin * 3 / 4, margin, margin * 3 / 4);
    QPushButton* const defaults = put(form_.cmdDefaults);
    defaults->setAutoDefault(false);
    row->addWidget(defaults);
    help_ = new QToolButton(bar);
    help_->setObjectName("help");
    help_->setText("?");
    help_->setToolTip("F1");
    help_->setShortcut(QKeySequence::HelpContents);
    connect(help_, &QToolButton::clicked, this, [this] { openHelp(); });
    row->addWidget(help_);
    row->addStretch(1);
    QPushButton* const ok = put(form_.cmdOK);
    ok->setDefault(true);
    row->addWidget(ok);
    QPushButton* const cancel = put(form_.cmdCancel);
    cancel->setAutoDefault(false);
    row->addWidget(cancel);
    return bar;
}

void OptionsWindow::addLine(QGridLayout& grid, int row, Label& label, QWidget* field)
{
    grid.addWidget(put(label, field), row, 0);
    grid.addWidget(field, row, 1);
}

QLabel* OptionsWindow::put(Label& label, QWidget* buddy)
{
    auto* const widget = enlist(label, new QLabel(this));
    widget->setBuddy(buddy);
    updates_.emplace_back([&label, widget] { widget->setText(text(label.Caption())); });
    return widget;
}

QCheckBox* OptionsWindow::put(CheckBox& box)
{
    auto* const widget = enlist(box, new QCheckBox(this));
    updates_.emplace_back([&box, widget] {
        widget->setText(text(box.Caption()));
        widget->setChecked(box.Value() == 1);
    });
    connect(widget, &QCheckBox::clicked, this, [this, &box] { act([&box] { box.Click(); }); });
    return widget;
}

QComboBox* OptionsWindow::put(PowerCombo& list)
{
    auto* const widget = enlist(list, new QComboBox(this));
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(this);
    updates_.emplace_back([&list, widget] {
        takeRows(*widget, list);
        widget->setPlaceholderText(text(list.Prompt()));
        widget->setCurrentIndex(list.CurrentRow());
    });
    connect(widget, &QComboBox::currentIndexChanged, this, [this, &list](int row) {
        if (!refreshing_)
            act([&list, row] { list.CurrentRow(row); });
    });
    return widget;
}

NumberField* OptionsWindow::put(PowerEdit& edit)
{
    auto* const widget = enlist(edit, new NumberField(
                                          edit, [this] { refresh(); }, this));
    updates_.emplace_back([widget] { widget->refresh(); });
    return widget;
}

QPushButton* OptionsWindow::put(PowerButton& button)
{
    auto* const widget = enlist(button, new QPushButton(this));
    updates_.emplace_back([&button, widget] { widget->setText(text(button.Caption())); });
    connect(widget, &QPushButton::clicked, this, [this, &button] {
        // The default button works while a field still has the focus.
        auto* const field = dynamic_cast<NumberField*>(focusWidget());
        if (field && &button != &form_.cmdCancel && !field->leave())
            return;
        act([&button] { button.Click(); });
    });
    return widget;
}

QGroupBox* OptionsWindow::put(Frame& frame)
{
    auto* const widget = enlist(frame, new QGroupBox(this));
    // The window keeps its size when a model hides the boxes.
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
    updates_.emplace_back([&frame, widget] { widget->setTitle(text(frame.Caption())); });
    return widget;
}

void OptionsWindow::run()
{
    refresh();
    enlargeTitle();
    help_->setVisible(!form_.HelpFile().empty());
    // A little air, for captions that change with the model.
    resize(sizeHint() + QSize(2 * fontMetrics().height(), 0));
    setWindowModality(Qt::ApplicationModal);
    if (form_.Visible())
        exec();
}

void OptionsWindow::refresh()
{
    refreshing_ = true;
    setWindowTitle(text(form_.Caption()));
    for (const auto& update : updates_)
        update();
    refreshing_ = false;
}

/// Lets the form do what the user wants, and shows what has become of it.
void OptionsWindow::act(const std::function<void()>& what)
{
    what();
    if (!form_.Visible())
        return;
    refresh();
    for (const auto& [widget, control] : controls_) {
        if (control == form_.ActiveControl() && control->Usable() && !widget->hasFocus())
            widget->setFocus();
    }
}

void OptionsWindow::followFocus(QWidget* now)
{
    const auto found = controls_.find(now);
    if (found != controls_.end())
        found->second->SetFocus();
}

void OptionsWindow::reject()
{
    act([this] { form_.cmdCancel.Click(); });
}

void OptionsWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::HelpContents))
        openHelp();
    else
        QDialog::keyPressEvent(event);
}

void OptionsWindow::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        enlargeTitle();
}

bool OptionsWindow::eventFilter(QObject* watched, QEvent* event)
{
    // The wheel is for scrolling past, unless the user is in the list.
    if (event->type() == QEvent::Wheel && !static_cast<QWidget*>(watched)->hasFocus()) {
        event->ignore();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void OptionsWindow::enlargeTitle()
{
    if (!title_)
        return;
    QFont large = font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * kTitleSize);
    title_->setFont(large);
}

void OptionsWindow::openHelp()
{
    if (form_.HelpFile().empty())
        return;
    QUrl help = QUrl::fromLocalFile(text(form_.HelpFile()));
    if (form_.HelpContextID() != 0)
        help.setFragment(QString::number(form_.HelpContextID()));
    QDesktopServices::openUrl(help);
}

} // namespace kel
