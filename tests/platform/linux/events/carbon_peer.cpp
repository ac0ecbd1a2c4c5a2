#include <Carbon/Carbon.h>
#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

// A program at the other end of the event link, by the same calls as the agent.
//   carbon_peer receive       receives events test/numb and writes "<number> from <pid>"; their status is the number
//   carbon_peer tell <pid>    sends one such event, numbered 41, and leaves by ExitToShell at once
// "receive" writes "ready" first, and ends with its standard input.

namespace
{

constexpr AEEventClass numberClass = fourCharCode("test");
constexpr AEEventID numberID = fourCharCode("numb");

OSErr onNumber(const AppleEvent *event, AppleEvent *, SRefCon)
{
    SInt32 number = -1;
    SInt32 sender = -1;
    AEGetParamPtr(event, fourCharCode("numb"), typeSInt32, nullptr, &number, sizeof number, nullptr);
    AEGetAttributePtr(event, keySenderPIDAttr, typeSInt32, nullptr, &sender, sizeof sender, nullptr);
    std::printf("%d from %d\n", int(number), int(sender));
    std::fflush(stdout);
    return static_cast<OSErr>(number);
}

int receive()
{
    if (AEInstallEventHandler(numberClass, numberID, onNumber, nullptr, false) != noErr) {
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &QCoreApplication::quit);
    return QCoreApplication::exec();
}

[[noreturn]] void tell(SInt32 pid)
{
    AEAddressDesc target;
    AppleEvent event;
    const SInt32 number = 41;
    AECreateDesc(typeKernelProcessID, &pid, sizeof pid, &target);
    AECreateAppleEvent(numberClass, numberID, &target, kAutoGenerateReturnID, kAnyTransactionID, &event);
    AEPutParamPtr(&event, fourCharCode("numb"), typeSInt32, &number, sizeof number);
    const OSErr status = AESend(&event, nullptr, kAENoReply, kAENormalPriority, kNoTimeOut, nullptr, nullptr);
    if (status != noErr) {
        std::fprintf(stderr, "AESend: %d\n", int(status));
        ::_exit(1);
    }
    ExitToShell();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "receive") == 0) {
        return receive();
    }
    if (argc == 3 && std::strcmp(argv[1], "tell") == 0) {
        tell(std::atoi(argv[2]));
    }
    return 2;
}
