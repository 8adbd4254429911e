#pragma once

#include <pylon/media/image.h>

#include <QtCore/QList>
#include <QtWidgets/QMainWindow>

#include "playback.h"
#include "zonechoice.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;
class QToolButton;

namespace pylon::viewer {

class LogPane;
class TileGrid;

/// The window: tiles above the controls above the log.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /// Shows a recording from its beginning.
    /// @return false, with the reason in the log and the old recording still there, if the file
    /// holds no frame.
    bool open(const QString& path);
    /// Selects a zone as the user would name it, see findZone().
    bool setZone(const QString& text, QString* error);

    Playback& playback() { return playback_; }
    TileGrid& grid() const { return *grid_; }

private:
    QWidget* makeHeading();
    QWidget* makeControls();
    void chooseFile();
    void applyZone(int index);
    void showPosition(int position);
    void showPlaying(bool playing);
    void logEvents(qint64 from, qint64 to) const;

    const QList<ZoneChoice> zones_;
    Playback playback_;
    QList<Image> events_;
    QLabel* title_;
    QCheckBox* aspectBox_;
    QComboBox* zoneBox_;
    TileGrid* grid_;
    QToolButton* playButton_;
    QSlider* slider_;
    QLabel* clock_;
    LogPane* logPane_;
};

}  // namespace pylon::viewer
