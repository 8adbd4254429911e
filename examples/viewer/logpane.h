#pragma once

#include <pylon/log/logcustom.h>

#include <QtCore/QSharedPointer>
#include <QtWidgets/QPlainTextEdit>

namespace pylon::viewer {

/// Shows what is logged as long as it lives.
///
/// Make and destroy it while no other thread logs. Lines may come from any thread; they are
/// appended on the pane's own.
class LogPane : public QPlainTextEdit, private plog::LogCustomInterface {
    Q_OBJECT

public:
    explicit LogPane(QWidget* parent = nullptr);
    ~LogPane() override;

signals:
    void lineLogged(int level, const QString& line);

private:
    void logItem(const plog::LogItem& item) override;
    void append(int level, const QString& line);

    QSharedPointer<plog::LogDevice> device_;
};

}  // namespace pylon::viewer
