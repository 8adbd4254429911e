#include "report.h"

#include <pylon/log/logmacros.h>
#include <pylon/media/framereader.h>

#include <algorithm>

#include "jsonwriter.h"
#include "recordings.h"

namespace pylon::inspector {

Report::Report(const Options& options, Output& output, const Recording& recording, int number)
    : options_(options),
      output_(output),
      name_(recording.name),
      style_(outputStyle()),
      table_(recording.size(), options.zone, style_),
      progress_(recording.size(), !options.log.enabled) {
    const QString prefix = number > 0 ? QStringLiteral("input%1-").arg(number) : QString();
    if (!options.extractFolder.isEmpty())
        extractor_.emplace(options.extractFolder, prefix);
    if (options.dump)
        dumper_.emplace(static_cast<quint32>(std::max(number, 1)));
}

void Report::add(const FrameReader& reader, qint64 offset) {
    const Image& image = reader.headerImage();
    ++frames_;
    PLOG_TRACE(logClient(), nullptr, streamSubModule,
               "frame at byte %lld: camera %u, track %u, %u bytes", offset, image.cameraId(),
               image.trackId(), image.totalSize());
    if (!options_.selects(image))
        return;
    const bool isTable = options_.format == Options::Format::Table;
    if (options_.format == Options::Format::Json)
        appendJson(output_.buffer(), reader, offset);
    else
        summary_.add(image);
    if (isTable)
        table_.appendFrame(output_.buffer(), reader, offset);
    if (dumper_) {
        const QByteArray line = dumper_->add(reader, frames_, offset);
        output_.buffer().append(isTable ? line : QByteArray());
    }
    if (output_.isLarge())
        print();
    if (extractor_ && !extractor_->add(reader, offset))
        stopped_ = true;
}

void Report::print() {
    if (output_.buffer().isEmpty())
        return;
    progress_.makeWay();
    output_.flush();
}

void Report::flush(qint64 offset) {
    print();
    progress_.update(offset);
}

void Report::complain(const QString& name, const QString& reason) {
    PLOG_WARN(logClient(), nullptr, "%s: %s", qUtf8Printable(name), qUtf8Printable(reason));
    good_ = false;
    progress_.hide();
    output_.flush();  // on a terminal, what was shown stands above the complaint
    inspector::complain(name + QLatin1String(": ") + reason);
}

void Report::finish() {
    progress_.hide();
    if (options_.format != Options::Format::Json)
        showSummary();
    output_.flush();
    finishExtraction();
    if (const QString error = dumper_ ? dumper_->errorText() : QString(); !error.isEmpty())
        complain(name_, error);
}

void Report::finishExtraction() {
    if (!extractor_)
        return;
    if (!extractor_->finish())
        complain(name_, extractor_->errorText());
    PLOG_INFO(logClient(), nullptr, "%lld files extracted from %s", extractor_->files(),
              qUtf8Printable(name_));
}

void Report::showSummary() {
    QByteArray& out = output_.buffer();
    if (summary_.frames() == 0) {
        out.append(frames_ == 0 ? "no frames\n" : "no frame matches\n");
        return;
    }
    if (options_.format == Options::Format::Table)
        out.append('\n');
    out.append(summary_.text(options_.zone, style_));
    if (dumper_)
        out.append(dumper_->text());
}

}  // namespace pylon::inspector
