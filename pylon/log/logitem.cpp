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

constexpr int prefixSize = 512;
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
                 const QByteArray& context, const QByteArray& message)
    : level_(level),
      module_(module),
      submods_(submods),
      timestamp_(true),
      moduleName_(moduleName),
      function_(function),
      prettyFunction_(prettyFunction),
      object_(object),
      context_(context),
      message_(message) {}

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

QString& LogItem::toString() const {
    if (!textCache_.isEmpty())
        return textCache_;
    char prefix[prefixSize];
    const int length = writePrefix(prefix, prefixSize, Form::Text);
    textCache_.reserve(qsizetype(textArrow.size()) + length + message_.size());
    if (module_ == Test)
        textCache_ += QLatin1String(textArrow.data(), qsizetype(textArrow.size()));
    textCache_ += QString::fromUtf8(prefix, length);
    textCache_ += QString::fromUtf8(message_);
    return textCache_;
}

QByteArray& LogItem::toCString() const {
    if (!bytesCache_.isEmpty())
        return bytesCache_;
    char prefix[prefixSize];
    const int length = writePrefix(prefix, prefixSize, Form::Bytes);
    const std::string_view arrow = module_ == Test ? bytesArrow : std::string_view();
    QByteArray line(length + qsizetype(arrow.size()) + message_.size(), Qt::Uninitialized);
    char* end = std::copy_n(prefix, length, line.data());
    end = std::copy_n(arrow.data(), arrow.size(), end);
    std::copy_n(message_.constData(), message_.size(), end);
    bytesCache_ = std::move(line);
    return bytesCache_;
}

int LogItem::writePrefix(char* buffer, int size, Form form) const {
    char time[timeTextSize];
    const int timeLength = timestamp_.toDefaultString(time, timeTextSize);

    ColumnWriter line(buffer, static_cast<std::size_t>(size - 1));
    line.put("[");
    line.put({time, static_cast<std::size_t>(std::max(timeLength, 0))});
    line.put("][");
    line.right<levelWidth>(logLevelShortName(level_));
    line.put("][");
    line.right<moduleWidth>(shownText(moduleName_, line.room()));
    line.put("][P:");
    line.hex<4>(getShortProcessId());
    line.put("][T:");
    line.hex<4>(getShortThreadId());
    if (form == Form::Bytes) {
        line.put("][O:");
        line.hex<8>(reinterpret_cast<std::uintptr_t>(object_));
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
    return static_cast<int>(line.length());
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
