// SPDX-License-Identifier: MIT
#include "options/qt/OptionsWindow.h"

#include "options/ListLines.h"
#include "options/qt/FieldAccess.h"
#include "options/qt/PortTools.h"
#include "options/qt/Utf8Text.h"

#include <QApplication>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

namespace kel {

namespace {

/// What a window manager may put around a window.
constexpr QSize kFrame(16, 40);

/// The title against the other texts.
constexpr double kTitleSize = 1.4;

QFrame* line(QWidget* parent)
{
    auto* const result = new QFrame(parent);
    result->setFrameShape(QFrame::HLine);
    result->setFrameShadow(QFrame::Sunken);
    return result;
}

/// Asks for as much room as what is in it.
class ScrolledBody final : public QScrollArea {
public:
    ScrolledBody(QWidget* content, QWidget* parent) : QScrollArea(parent)
    {
        setObjectName("body");
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
        setWidgetResizable(true);
        setWidget(content);
    }
    [[nodiscard]] QSize sizeHint() const override { return widget()->sizeHint(); }
};

/// The rows of a list, and below them what cannot be chosen.
std::vector<ListBox::Row> rowsOf(const PowerCombo& list)
{
    std::vector<ListBox::Row> rows;
    rows.reserve(static_cast<std::size_t>(list.RowCount()) + list.Unavailable().size());
    for (Int32 row = 0; row < list.RowCount(); ++row)
        rows.push_back({text(lineOf(list, row)), text(headingOf(list, row))});
    for (const PowerCombo::Line& line : list.Unavailable())
        rows.push_back({text(line.text), {}, text(line.reason), true});
    return rows;
}

} // namespace

OptionsWindow::OptionsWindow(frmOptions& form, WindowPlace& place, QWidget* parent)
    : QDialog(parent), form_(form), place_(place)
{
    setObjectName("frmOptions");
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setSizeGripEnabled(true);

    auto* const page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addWidget(header());
    page->addWidget(line(this));

    auto* const content = new QWidget;
    auto* const body = new QVBoxLayout(content);
    const int margin = fontMetrics().height();
    body->setContentsMargins(margin, margin, margin, margin);
    body->setSpacing(margin);
    auto* const model = new QHBoxLayout;
    ListBox* const models = put(form_.cboReaderType);
    model->addWidget(put(form_.lblReaderType, models));
    model->addWidget(models, 1);
    body->addLayout(model);
    auto* const boxes = new QHBoxLayout;
    boxes->setSpacing(margin);
    boxes->addWidget(readerBox(), 1);
    boxes->addWidget(portBox(), 1);
    // The boxes keep their room while no model is chosen.
    auto* const settings = new QGridLayout;
    settings->addLayout(boxes, 0, 0);
    settings->addWidget(noModel(), 0, 0, Qt::AlignTop);
    body->addLayout(settings, 1);
    body_ = new ScrolledBody(content, this);
    page->addWidget(body_, 1);

    page->addWidget(line(this));
    page->addWidget(buttons());

    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { followFocus(now); });
    form_.onHide = [this] { done(0); };
    describeNumberFields();
}

OptionsWindow::~OptionsWindow()
{
    // The focus goes elsewhere when the window goes, and so does an explanation that is open.
    disconnect(qApp, nullptr, this, nullptr);
    form_.onHide = nullptr;
}

template <class Widget>
Widget* OptionsWindow::enlist(Control& control, Widget* widget)
{
    widget->setObjectName(QString::fromUtf8(control.Name().data(), static_cast<qsizetype>(control.Name().size())));
    controls_.emplace(widget, &control);
    updates_.emplace_back([this, &control, widget] {
        widget->setEnabled(static_cast<bool>(control.Enabled()));
        widget->setVisible(static_cast<bool>(control.Visible()));
        explain(control, *widget);
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
    QLabel* const subtitle = put(form_.lblSubtitle, nullptr);
    for (QLabel* const label : {title_, subtitle}) {
        label->setForegroundRole(QPalette::Text);
        column->addWidget(label);
    }
    return band;
}

QGroupBox* OptionsWindow::readerBox()
{
    QGroupBox* const frame = put(form_.frmReader);
    auto* const grid = new QGridLayout(frame);
    int row = 0;
    for (CheckBox* const box : {&form_.chkFeeder, &form_.chkDuplex, &form_.chkRejecter, &form_.chkReaderGrade,
                                &form_.chkBarcode, &form_.chkPrinter, &form_.chkWindowing}) {
        grid->addWidget(put(*box), row, 0, 1, 2);
        grid->addWidget(resetOf(*box), row++, 2);
    }
    auto* const gap = new QWidget(frame);
    gap->setFixedHeight(fontMetrics().height() / 2);
    updates_.emplace_back([grid, gap, options = row] {
        bool any = false;
        for (int option = 0; option < options; ++option)
            any = any || !grid->itemAtPosition(option, 0)->widget()->isHidden();
        gap->setVisible(any);
    });
    grid->addWidget(gap, row++, 0);
    addLine(*grid, row++, form_.lblRecognitionThreshold, put(form_.txtRecognitionThreshold),
            form_.txtRecognitionThreshold);
    addLine(*grid, row++, form_.lblMarkDiscrimination, put(form_.txtMarkDiscrimination), form_.txtMarkDiscrimination);
    addLine(*grid, row++, form_.lblMarkCutOff, put(form_.txtMarkCutOff), form_.txtMarkCutOff);
    addLine(*grid, row++, form_.lblReaderTimeout, put(form_.txtReaderTimeout), form_.txtReaderTimeout);
    addLine(*grid, row++, form_.lblSystemPause, put(form_.txtSystemPause), form_.txtSystemPause);
    grid->setRowStretch(row, 1);
    grid->setColumnStretch(0, 1);
    return frame;
}

QGroupBox* OptionsWindow::portBox()
{
    QGroupBox* const frame = put(form_.frmComPort);
    auto* const grid = new QGridLayout(frame);
    auto* const port = new QHBoxLayout;
    ListBox* const ports = put(form_.cboPort);
    ports->keepNarrow();
    port->addWidget(ports, 1);
    QPushButton* const locate = put(form_.cmdLocate);
    port->addWidget(locate);
    updates_.emplace_back([this, locate] {
        if (form_.Aids().usesPorts())
            locate->setEnabled(false);
    });
    grid->addWidget(put(form_.lblPort, ports), 0, 0);
    grid->addLayout(port, 0, 1, 1, 2);
    addLine(*grid, 1, form_.lblBaud, put(form_.cboBaud), form_.cboBaud);
    addLine(*grid, 2, form_.lblDataBits, put(form_.cboDataBits), form_.cboDataBits);
    addLine(*grid, 3, form_.lblParity, put(form_.cboParity), form_.cboParity);
    addLine(*grid, 4, form_.lblStopBits, put(form_.cboStopBits), form_.cboStopBits);
    addLine(*grid, 5, form_.lblFlowControl, put(form_.cboFlowControl), form_.cboFlowControl);
    auto* const tools = new PortTools(
        form_.Aids(), [this] { refresh(); }, frame);
    updates_.emplace_back([tools] { tools->refresh(); });
    grid->addWidget(tools, 6, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(7, 1);
    return frame;
}

QWidget* OptionsWindow::buttons()
{
    auto* const bar = new QWidget(this);
    auto* const row = new QHBoxLayout(bar);
    const int margin = fontMetrics().height();
    row->setContentsMargins(margin, margin * 3 / 4, margin, margin * 3 / 4);
    row->addWidget(put(form_.cmdDefaults));
    help_ = new QToolButton(bar);
    help_->setObjectName("help");
    help_->setText("?");
    help_->setAutoRaise(true);
    QFont bold = font();
    bold.setBold(true);
    help_->setFont(bold);
    help_->setToolTip("F1");
    connect(help_, &QToolButton::clicked, this, [this] { openHelp(); });
    row->addWidget(help_);
    notice_ = new QLabel(bar);
    notice_->setObjectName("notice");
    notice_->setWordWrap(true);
    QSizePolicy policy = notice_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    notice_->setSizePolicy(policy);
    notice_->hide();
    row->addWidget(notice_, 1);
    row->addWidget(testButton(bar));
    QPushButton* const ok = put(form_.cmdOK);
    ok->setDefault(true);
    row->addWidget(ok);
    row->addWidget(put(form_.cmdCancel));
    return bar;
}

void OptionsWindow::addLine(QGridLayout& grid, int row, Label& label, QWidget* field, Control& control)
{
    grid.addWidget(put(label, field), row, 0);
    grid.addWidget(field, row, 1);
    grid.addWidget(resetOf(control), row, 2);
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

ListBox* OptionsWindow::put(PowerCombo& list)
{
    auto* const widget = enlist(list, new ListBox(this));
    updates_.emplace_back([&list, widget] {
        widget->takeRows(rowsOf(list));
        widget->setPlaceholderText(text(list.Prompt()));
        widget->setCurrentIndex(list.CurrentRow());
    });
    connect(widget, &ListBox::currentIndexChanged, this, [this, &list](int row) {
        if (!refreshing_ && row < list.RowCount())
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
    connect(widget, &QPushButton::clicked, this, [this, &button] { click(button); });
    return widget;
}

QGroupBox* OptionsWindow::put(Frame& frame)
{
    auto* const widget = enlist(frame, new QGroupBox(this));
    // The window keeps its size when a model hides the boxes, as it does when one hides what is in them.
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
    reserveRoom();
    takePlace();
    setWindowModality(Qt::ApplicationModal);
    if (form_.Visible())
        exec();
    keepPlace();
}

/// The window is as large as all controls need, whichever of them the first model shows.
void OptionsWindow::reserveRoom()
{
    const QList<QGroupBox*> frames = findChildren<QGroupBox*>();
    for (QGroupBox* const frame : frames) {
        for (QWidget* const each : frame->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            each->setVisible(true);
    }
    // Before the window is shown nobody asks the layouts to look again.
    const auto measureAnew = [this] {
        for (QLayout* const layout : findChildren<QLayout*>())
            layout->invalidate();
    };
    measureAnew();
    for (QGroupBox* const frame : frames)
        frame->setMinimumSize(frame->sizeHint());
    refresh();
    measureAnew();
}

/// Goes where the window stood when it was last closed, as far as there is a screen now.
void OptionsWindow::takePlace()
{
    const QStringList numbers = text(place_.recall()).split(',');
    const QPoint place(numbers.value(0).toInt(), numbers.value(1).toInt());
    const QScreen* there = numbers.size() >= 2 ? QGuiApplication::screenAt(place) : nullptr;
    const QRect room = (there ? there : screen())->availableGeometry();
    // A little air, for captions that change with the model.
    usualSize_ = (sizeHint() + QSize(2 * fontMetrics().height(), 0)).boundedTo(room.size() - kFrame);
    const QSize last(numbers.value(2).toInt(), numbers.value(3).toInt());
    const QSize size = (numbers.size() == 4 ? last : usualSize_).boundedTo(room.size() - kFrame);
    resize(size);
    if (there)
        move(std::min(place.x(), room.right() - size.width()), std::min(place.y(), room.bottom() - size.height()));
}

/// The size is the user's wish only if the user has changed it.
void OptionsWindow::keepPlace()
{
    QString place = QString("%1,%2").arg(x()).arg(y());
    if (size() != usualSize_)
        place += QString(",%1,%2").arg(width()).arg(height());
    place_.keep(place.toStdString());
}

void OptionsWindow::refresh()
{
    refreshing_ = true;
    setWindowTitle(text(form_.Caption()));
    for (const auto& update : updates_)
        update();
    showTest();
    refreshing_ = false;
}

/// Lets the form do what the user wants, and shows what has become of it.
void OptionsWindow::act(const std::function<void()>& what)
{
    notice_->hide();
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
    if (found == controls_.end())
        return;
    found->second->SetFocus();
    if (body_->isAncestorOf(now))
        body_->ensureWidgetVisible(now);
}

void OptionsWindow::reject()
{
    act([this] { form_.cmdCancel.Click(); });
}

void OptionsWindow::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* const tool = qobject_cast<QToolButton*>(focusWidget());
    if (event->matches(QKeySequence::HelpContents) && form_.HelpFile().empty())
        explainFocus();
    else if (event->matches(QKeySequence::HelpContents))
        openHelp();
    else if (isEnter && tool)
        tool->click();
    else
        QDialog::keyPressEvent(event);
}

void OptionsWindow::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        enlargeTitle();
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

} // namespace kel
