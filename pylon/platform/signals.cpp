#include <pylon/platform/signals.h>

#include <algorithm>
#include <csignal>

namespace pylon {

namespace {

#ifdef SIGBREAK
constexpr int breakNumber = SIGBREAK;
#else
constexpr int breakNumber = 0;
#endif

struct Signal {
    int id;
    int number;
    const char* name;
};

constexpr Signal signalTable[] = {
    {2, SIGINT, "Interrupt (ANSI)"},
    {4, SIGILL, "Illegal instruction (ANSI)"},
    {8, SIGFPE, "Floating-point exception (ANSI)"},
    {11, SIGSEGV, "Segmentation violation (ANSI)"},
    {15, SIGTERM, "Termination (ANSI)"},
    {21, breakNumber, "Ctrl-Break sequence"},
    {22, SIGABRT, "Abort (ANSI) or IOT trap (4.2 BSD)"},
};

constexpr Signal unknown = {0, 0, "Unknow signal"};

const Signal& find(int Signal::*key, int value) {
    const auto found = std::find_if(std::begin(signalTable), std::end(signalTable),
                                    [&](const Signal& signal) { return signal.*key == value; });
    return value != 0 && found != std::end(signalTable) ? *found : unknown;
}

}  // namespace

std::vector<int> signalIds() {
    return {21, 2, 4, 8, 11, 15, 22};
}

QString signalToString(int id) {
    return QString().arg(QLatin1String(signalName(id)));
}

const char* signalName(int id) {
    return find(&Signal::id, id).name;
}

int signalNumber(int id) {
    return find(&Signal::id, id).number;
}

int signalId(int number) {
    return find(&Signal::number, number).id;
}

}  // namespace pylon
