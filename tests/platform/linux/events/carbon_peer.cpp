#include <Carbon/Carbon.h>
#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

// A program at the other end of the event link, by the same calls as the agent.
//   carbon_peer receive           receives events test/numb and writes "<number> from <pid>", their status the number
//   carbon_peer tell <pid> <way>  sends one such event, numbered 41, and ends at once: "leave" by ExitToShell,
//                                 "exit" by exit(), "return" by returning from main()
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

int tell(SInt32 pid, const char *way)
{
    AEAddressDesc target;
    AppleEvent event;
    const SInt32 number = 41;
    AECreateDesc(typeKernelProcessID, &pid, sizeof pid, &target);
    AECreateAppleEvent(numberClass, numberID, &target, kAutoGenerateReturnID, kAnyTransactionID, &event);
    AEPutParamPtr(&event, fourCharCode("numb"), typeSInt32, &number, sizeof number);
    const OSErr status = AESend(&event, nullptr, kAENoReply, kAENormalPriority, kNoTimeOut, nullptr, nullptr);
    AEDisposeDesc(&event);
    AEDisposeDesc(&target);
    if (status != noErr) {
        std::fprintf(stderr, "AESend: %d\n", int(status));
        ::_exit(1);
    }
    if (std::strcmp(way, "leave") == 0) {
        ExitToShell();
    }
    if (std::strcmp(way, "exit") == 0) {
        std::exit(0);
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "receive") == 0) {
        return receive();
    }
    if (argc == 4 && std::strcmp(argv[1], "tell") == 0) {
        return tell(std::atoi(argv[2]), argv[3]);
    }
    return 2;
}
