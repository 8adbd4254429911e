#include <pylon/log/assertions.h>
#include <pylon/log/logclient.h>
#include <pylon/log/logfile.h>

#include <QtCore/QString>

#include <atomic>

namespace {

using namespace pylon::plog;

std::atomic<bool> assertEnabled{true};

QByteArray local(const char* text) {
    return QString::fromUtf8(text).toLocal8Bit();
}

void warnNotStatic(const char* function) {
    log_client_.log(Warn, function, function, nullptr,
                    Arg("%s is not currently static (waiting on version 6 and Qt5)"), Arg(),
                    "DUMMY_STR", function);
}

}  // namespace

void pAssert(bool condition, const char* expression, const char* file, int line) {
    if (condition)
        return;
    const QByteArray expressionText = local(expression);
    const QByteArray fileText = local(file);
    log_client_.log(Error, "pAssert", "pAssert", nullptr,
                    Arg("ASSERT FAILED! Assert condition: %s, File %s, Line %d"), Arg(),
                    "DUMMY_STR", expressionText.constData(), fileText.constData(), line);
    flushFileDevices();
    qt_assert(expressionText.constData(), fileText.constData(), line);
}

void pAssertX(bool condition, const char* where, const char* what, const char* file, int line) {
    if (condition)
        return;
    const QByteArray whereText = local(where);
    const QByteArray whatText = local(what);
    const QByteArray fileText = local(file);
    log_client_.log(Error, "pAssertX", "pAssertX", nullptr,
                    Arg("ASSERT FAILED in %s: %s, File %s, Line %d"), Arg(), "DUMMY_STR",
                    whereText.constData(), whatText.constData(), fileText.constData(), line);
    flushFileDevices();
    qt_assert_x(whereText.constData(), whatText.constData(), fileText.constData(), line);
}

void pStaticAssert(bool condition, const char* expression, const char* file, int line) {
    warnNotStatic("pStaticAssert");
    pAssert(condition, expression, file, line);
}

void pStaticAssertX(bool condition, const char* where, const char* what, const char* file,
                    int line) {
    warnNotStatic("pStaticAssertX");
    pAssertX(condition, where, what, file, line);
}

void enable_pAssert() {
    assertEnabled = true;
}

void disable_pAssert() {
    assertEnabled = false;
}

bool is_pAssertEnabled() {
    return assertEnabled;
}
