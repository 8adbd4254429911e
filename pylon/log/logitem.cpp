#include <pylon/log/internal/columnwriter.h>
#include <pylon/log/logitem.h>
#include <pylon/platform/internal/clock.h>

#include <QtCore/QCoreApplication>

#include <atomic>
#include <cstdint>

namespace pylon::plog {

bool LogItem::show_level_ = true;
bool LogItem::show_module_ = true;
bool LogItem::show_function_ = true;
bool LogItem::show_tid_ = false;
bool LogItem::use_pretty_function_ = true;

namespace {

// A prefix of 512 characters less a terminator that is not written.
constexpr std::size_t maxPrefixSize = 511;
constexpr int timeTextSize = 64;

constexpr std::size_t levelWidth = 5;
constexpr std::size_t moduleWidth = 10;
constexpr std::size_t contextWidth = 25;
constexpr std::size_t functionWidth = 40;
// Keeps messages in line when there is no context: its column, brackets and blank.
constexpr std::size_t noContextWidth = contextWidth + 3;

constexpr std::string_view textArrow = "---------------------------->  ";
constexpr std::string_view bytesArrow = "----------------------------> ";

}  // namespace

LogItem::LogItem(LogLevel level, Module module, unsigned int submods, const char* moduleName,
                 const char* function, const char* prettyFunction, const void* object,
                 const QByteArray& context, QByteArray message)
    : level_(level),
      module_(module),
      submods_(submods),
      timestamp_(true),
      moduleName_(moduleName),
      function_(function),
      prettyFunction_(prettyFunction),
      object_(object),
      context_(context),
      message_(std::move(message)) {}

LogItem::LogItem(const QString& text)
    : level_(Info),
      module_(PylonSDK),
      submods_(defaultSubModule),
      timestamp_(false),
      moduleName_(nullptr),
      function_("NONE"),
      prettyFunction_("NONE"),
      object_(nullptr),
      textCache_(text),
      bytesCache_(text.toUtf8()) {}

LogItem::LogItem(const LogItem& other)
    : level_(other.level_),
      module_(other.module_),
      submods_(other.submods_),
      timestamp_(other.timestamp_),
      moduleName_(other.moduleName_),
      function_(other.function_),
      prettyFunction_(other.prettyFunction_),
      object_(other.object_),
      context_(other.context_),
      message_(other.message_),
      textCache_(other.textCache_),
      bytesCache_(other.bytesCache_) {
    // The message may stand in a large buffer that is used again and again.
    if (message_.capacity() > 2 * message_.size() + 64)
        message_.squeeze();
}

LogItem& LogItem::operator=(const LogItem& other) {
    return *this = LogItem(other);
}

QString& LogItem::toString() const {
    if (!textCache_.isEmpty())
        return textCache_;
    char prefix[maxPrefixSize];
    const qsizetype length = writePrefix(prefix, Form::Text);
    textCache_.reserve(qsizetype(textArrow.size()) + length + message_.size());
    if (module_ == Test)
        textCache_ += QLatin1String(textArrow.data(), qsizetype(textArrow.size()));
    textCache_ += QString::fromUtf8(prefix, length);
    textCache_ += QString::fromUtf8(message_);
    return textCache_;
}

QByteArray& LogItem::toCString() const {
    if (bytesCache_.isEmpty())
        appendLine(bytesCache_);
    return bytesCache_;
}

void LogItem::appendTo(QByteArray& out) const {
    if (bytesCache_.isEmpty())
        appendLine(out);
    else
        out.append(bytesCache_);
}

void LogItem::appendLine(QByteArray& out) const {
    const std::string_view arrow = module_ == Test ? bytesArrow : std::string_view();
    const qsizetype start = out.size();
    out.resize(start + qsizetype(maxPrefixSize + arrow.size()) + message_.size());
    char* end = out.data() + start;
    end += writePrefix(end, Form::Bytes);
    end = copyShort(arrow.data(), arrow.size(), end);
    end = copyShort(message_.constData(), static_cast<std::size_t>(message_.size()), end);
    out.truncate(end - out.data());
}

qsizetype LogItem::writePrefix(char* buffer, Form form) const {
    ColumnWriter line(buffer, maxPrefixSize);
    line.put("[");
    line.advance(std::max(timestamp_.toDefaultString(buffer + line.length(), timeTextSize), 0));
    line.put("][");
    line.right<levelWidth>(logLevelShortName(level_));
    line.put("][");
    line.right<moduleWidth>(shownText(moduleName_, line.room()));
    line.put("][P:");
    line.hex4(getShortProcessId());
    line.put("][T:");
    line.hex4(getShortThreadId());
    if (form == Form::Bytes) {
        line.put("][O:");
        line.hex8(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(object_)));
    }
    line.put("]");
    if (context_.isEmpty()) {
        line.fill(noContextWidth);
    } else {
        line.put("[");
        line.right<contextWidth>(shownText(context_.constData(), contextWidth));
        line.put("] ");
    }
    line.leftCut<functionWidth>(shownText(function(), functionWidth));
    line.put(": ");
    return static_cast<qsizetype>(line.length());
}

unsigned short LogItem::getShortProcessId() {
    static std::atomic<unsigned short> cached{0};
    unsigned short id = cached.load(std::memory_order_relaxed);
    if (id == 0) {
        id = static_cast<unsigned short>(QCoreApplication::applicationPid());
        cached.store(id, std::memory_order_relaxed);
    }
    return id;
}

unsigned short LogItem::getShortThreadId() {
    const QCoreApplication* application = QCoreApplication::instance();
    if (!application || !application->thread())
        return 0;
    return static_cast<unsigned short>(platform::currentThreadId());
}

QString printByteArray(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return {};
    return QString::fromLatin1(bytes.toHex(' ')) + QLatin1Char(' ');
}

}  // namespace pylon::plog
