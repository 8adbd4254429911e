#include "mainwindow.h"

#include <pylon/log/logmacros.h>

#include <QtGui/QPainter>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QSlider>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QToolButton>

#include "logpane.h"
#include "theme.h"
#include "tilegrid.h"

namespace pylon::viewer {

namespace {

plog::LogClient<plog::MainUI> client;

constexpr int spacing = 8;
constexpr int pageStepMSecs = 1000;
constexpr int singleStepMSecs = 200;

// "1:02.34": minutes, seconds, hundredths.
QString clockText(int msecs) {
    return QStringLiteral("%1:%2.%3")
        .arg(msecs / 60'000)
        .arg(msecs / 1000 % 60, 2, 10, QLatin1Char('0'))
        .arg(msecs / 10 % 100, 2, 10, QLatin1Char('0'));
}

// Shapes in a square of 16; the style's own icons are dark.
QIcon iconOf(const QList<QPolygonF>& shapes) {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::text);
    for (const QPolygonF& shape : shapes)
        painter.drawPolygon(shape);
    return pixmap;
}

QIcon playIcon() {
    return iconOf({QPolygonF({{3, 1}, {15, 8}, {3, 15}})});
}

QIcon pauseIcon() {
    return iconOf({QPolygonF(QRectF(2, 1, 4, 14)), QPolygonF(QRectF(10, 1, 4, 14))});
}

}  // namespace

MainWindow::MainWindow() : zones_(zoneChoices()) {
    setWindowTitle(QStringLiteral("Recording viewer"));
    auto* upper = new QWidget;
    auto* rows = new QVBoxLayout(upper);
    rows->setContentsMargins(spacing, spacing, spacing, spacing);
    rows->setSpacing(spacing);
    grid_ = new TileGrid;
    rows->addWidget(makeHeading());
    rows->addWidget(grid_, 1);
    rows->addWidget(makeControls());

    logPane_ = new LogPane;
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(upper);
    splitter->addWidget(logPane_);
    splitter->setStretchFactor(0, 1);
    splitter->setSizes({630, 140});
    setCentralWidget(splitter);
    resize(780, 770);

    connect(&playback_, &Playback::positionChanged, this, &MainWindow::showPosition);
    connect(&playback_, &Playback::played, this, &MainWindow::logEvents);
    connect(&playback_, &Playback::playingChanged, this, &MainWindow::showPlaying);
    showPlaying(false);
}

MainWindow::~MainWindow() = default;

QWidget* MainWindow::makeHeading() {
    auto* heading = new QWidget;
    auto* row = new QHBoxLayout(heading);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);

    auto* openButton = new QToolButton;
    openButton->setText(QStringLiteral("Open…"));
    openButton->setShortcut(QKeySequence::Open);
    connect(openButton, &QToolButton::clicked, this, &MainWindow::chooseFile);
    title_ = new QLabel(QStringLiteral("No recording"));
    title_->setTextFormat(Qt::PlainText);

    aspectBox_ = new QCheckBox(QStringLiteral("Keep proportions"));
    aspectBox_->setChecked(true);
    connect(aspectBox_, &QCheckBox::toggled, grid_, &TileGrid::setKeepAspect);
    zoneBox_ = new QComboBox;
    for (const ZoneChoice& choice : zones_)
        zoneBox_->addItem(choice.label);
    zoneBox_->setMinimumWidth(300);
    connect(zoneBox_, &QComboBox::currentIndexChanged, this, &MainWindow::applyZone);

    row->addWidget(openButton);
    row->addWidget(title_, 1);
    row->addWidget(aspectBox_);
    row->addWidget(new QLabel(QStringLiteral("Times in")));
    row->addWidget(zoneBox_);
    return heading;
}

QWidget* MainWindow::makeControls() {
    auto* controls = new QWidget;
    auto* row = new QHBoxLayout(controls);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);

    playButton_ = new QToolButton;
    playButton_->setObjectName(QStringLiteral("play"));
    playButton_->setShortcut(Qt::Key_Space);
    connect(playButton_, &QToolButton::clicked, &playback_, &Playback::toggle);
    slider_ = new QSlider(Qt::Horizontal);
    slider_->setPageStep(pageStepMSecs);
    slider_->setSingleStep(singleStepMSecs);
    connect(slider_, &QSlider::valueChanged, &playback_, &Playback::seek);
    clock_ = new QLabel(QStringLiteral("0:00.00 / 0:00.00"));
    controls->setEnabled(false);

    row->addWidget(playButton_);
    row->addWidget(slider_, 1);
    row->addWidget(clock_);
    return controls;
}

bool MainWindow::open(const QString& path) {
    std::optional<Recording> recording = Recording::load(path);
    if (!recording)
        return false;
    title_->setText(recording->fileName);
    events_ = recording->events;
    grid_->setCameras(recording->cameras);
    grid_->setZone(zones_[zoneBox_->currentIndex()].zone);
    grid_->setKeepAspect(aspectBox_->isChecked());
    slider_->parentWidget()->setEnabled(true);
    playback_.setSpan(recording->begin, recording->end);
    return true;
}

bool MainWindow::setZone(const QString& text, QString* error) {
    const qsizetype index = findZone(zones_, text, error);
    if (index < 0)
        return false;
    zoneBox_->setCurrentIndex(static_cast<int>(index));
    return true;
}

void MainWindow::chooseFile() {
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Open a recording"), QString(),
                                     QStringLiteral("Recordings (*.frames);;All files (*)"));
    if (!path.isEmpty())
        open(path);
}

void MainWindow::applyZone(int index) {
    grid_->setZone(zones_[index].zone);
    PLOG_INFO(client, this, "Times are shown in: %s", zones_[index].label.toUtf8().constData());
}

void MainWindow::showPosition(int position) {
    const QSignalBlocker blocker(slider_);
    slider_->setRange(0, playback_.duration());
    slider_->setValue(position);
    clock_->setText(clockText(position) + QLatin1String(" / ") + clockText(playback_.duration()));
    grid_->showTime(playback_.time());
}

void MainWindow::showPlaying(bool playing) {
    playButton_->setIcon(playing ? pauseIcon() : playIcon());
    playButton_->setToolTip(playing ? QStringLiteral("Pause") : QStringLiteral("Play"));
}

void MainWindow::logEvents(qint64 from, qint64 to) const {
    for (const Image& event : events_) {
        if (event.time() > from && event.time() <= to)
            PLOG_INFO(client, this, "Event: %.*s", static_cast<int>(event.payloadSize()),
                      event.payloadData());
    }
}

}  // namespace pylon::viewer
