#include "tests/session/support/SessionManager.h"

#include "tests/support/WaitUntil.h"

#include <QSocketNotifier>

#include <gtest/gtest.h>

#include <X11/SM/SMlib.h>
#include <cstdlib>
#include <sys/socket.h>
#include <vector>

// Of the library, for session managers; no header has it.
extern "C" int _IceTransNoListen(const char *protocol);

struct SessionManager::Protocol {
    Protocol();
    ~Protocol();

    void accept(IceListenObj listener);
    void read();
    void forgetClient();
    static Status setUpClient(SmsConn client, SmPointer protocol, unsigned long *mask, SmsCallbacks *callbacks,
                              char **);

    int count = 0;
    IceListenObj *listeners = nullptr;
    QByteArray address;
    std::vector<std::unique_ptr<QSocketNotifier>> notifiers;

    IceConn connection = nullptr;
    std::unique_ptr<QSocketNotifier> notifier; ///< Of the connection.
    SmsConn client = nullptr;                  ///< Once it has said what it is.
    bool hasJoined = false;
    int saves = 0;
};

namespace
{
char clientName[] = "the one"; // The library copies it.
} // namespace

SessionManager::Protocol::Protocol()
{
    IceSetIOErrorHandler([](IceConn) {}); // The library's own would end the test.
    _IceTransNoListen("tcp");
    char error[256] = "";
    const bool ready =
        SmsInitialize(
            "kivmenua", "1", &setUpClient, this, [](char *) -> Bool { return True; }, sizeof error, error) &&
        IceListenForConnections(&count, &listeners, sizeof error, error);
    EXPECT_TRUE(ready) << error;
    if (!ready) {
        return;
    }
    char *const ids = IceComposeNetworkIdList(count, listeners);
    address = ids;
    std::free(ids);
    for (int i = 0; i < count; ++i) {
        IceSetHostBasedAuthProc(listeners[i], [](char *) -> Bool { return True; });
        notifiers.push_back(
            std::make_unique<QSocketNotifier>(IceGetListenConnectionNumber(listeners[i]), QSocketNotifier::Read));
        QObject::connect(notifiers.back().get(), &QSocketNotifier::activated, notifiers.back().get(),
                         [this, i] { accept(listeners[i]); });
    }
}

SessionManager::Protocol::~Protocol()
{
    forgetClient();
    notifiers.clear();
    IceFreeListenObjs(count, listeners);
}

void SessionManager::Protocol::accept(IceListenObj listener)
{
    IceAcceptStatus status = IceAcceptFailure;
    const IceConn accepted = IceAcceptConnection(listener, &status);
    ASSERT_TRUE(accepted);
    ASSERT_FALSE(connection) << "a second program joins";
    connection = accepted;
    notifier = std::make_unique<QSocketNotifier>(IceConnectionNumber(connection), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { read(); });
}

void SessionManager::Protocol::read()
{
    if (IceProcessMessages(connection, nullptr, nullptr) == IceProcessMessagesIOError) {
        forgetClient();
    }
}

void SessionManager::Protocol::forgetClient()
{
    if (!connection) {
        return;
    }
    // It may be its own signal that brings us here.
    notifier->setEnabled(false);
    notifier.release()->deleteLater();
    if (client) {
        SmsCleanUp(client);
    }
    IceSetShutdownNegotiation(connection, False);
    IceCloseConnection(connection);
    connection = nullptr;
    client = nullptr;
    hasJoined = false;
}

Status SessionManager::Protocol::setUpClient(SmsConn joining, SmPointer protocol, unsigned long *mask,
                                             SmsCallbacks *callbacks, char **)
{
    static_cast<Protocol *>(protocol)->client = joining;
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
            SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
            SmsGetPropertiesProcMask;
    callbacks->register_client = {[](SmsConn from, SmPointer self, char *previousName) -> Status {
                                      std::free(previousName);
                                      SmsRegisterClientReply(from, clientName);
                                      // As the protocol wants it of whoever joins anew.
                                      SmsSaveYourself(from, SmSaveLocal, False, SmInteractStyleNone, False);
                                      static_cast<Protocol *>(self)->hasJoined = true;
                                      return True;
                                  },
                                  protocol};
    callbacks->interact_request = {[](SmsConn from, SmPointer, int) { SmsInteract(from); }, protocol};
    callbacks->interact_done = {[](SmsConn, SmPointer, Bool) {}, protocol};
    callbacks->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {}, protocol};
    callbacks->save_yourself_phase2_request = {[](SmsConn from, SmPointer) { SmsSaveYourselfPhase2(from); }, protocol};
    callbacks->save_yourself_done = {[](SmsConn, SmPointer self, Bool) { ++static_cast<Protocol *>(self)->saves; },
                                     protocol};
    callbacks->close_connection = {
        [](SmsConn, SmPointer self, int, char **) { static_cast<Protocol *>(self)->forgetClient(); }, protocol};
    callbacks->set_properties = {[](SmsConn, SmPointer, int number, SmProp **properties) {
                                     for (int i = 0; i < number; ++i) {
                                         SmFreeProperty(properties[i]);
                                     }
                                     std::free(properties);
                                 },
                                 protocol};
    callbacks->delete_properties = {[](SmsConn, SmPointer, int number, char **names) {
                                        for (int i = 0; i < number; ++i) {
                                            std::free(names[i]);
                                        }
                                        std::free(names);
                                    },
                                    protocol};
    callbacks->get_properties = {[](SmsConn from, SmPointer) { SmsReturnProperties(from, 0, nullptr); }, protocol};
    return True;
}

SessionManager::SessionManager()
    : m_protocol(std::make_unique<Protocol>())
{
}

SessionManager::~SessionManager() = default;

void SessionManager::addTo(QProcessEnvironment &environment) const
{
    environment.insert(QStringLiteral("SESSION_MANAGER"), QString::fromLocal8Bit(m_protocol->address));
}

bool SessionManager::saveState()
{
    return haveSaved(false);
}

bool SessionManager::beginLogOutAndCancel()
{
    const bool saved = haveSaved(true);
    if (saved) {
        SmsShutdownCancelled(m_protocol->client);
    }
    return saved;
}

bool SessionManager::logOut()
{
    const bool saved = haveSaved(true);
    if (saved) {
        SmsDie(m_protocol->client);
    }
    return saved;
}

bool SessionManager::die()
{
    const bool joined = waitForClient();
    if (joined) {
        ::shutdown(IceConnectionNumber(m_protocol->connection), SHUT_RDWR);
    }
    return joined;
}

bool SessionManager::waitForClient()
{
    // The first save is that of a program that has just joined.
    const bool ready = waitUntil([this] { return m_protocol->hasJoined && m_protocol->saves > 0; });
    EXPECT_TRUE(ready) << "the program has not joined the session";
    return ready;
}

bool SessionManager::haveSaved(bool sessionEnds)
{
    if (!waitForClient()) {
        return false;
    }
    const int before = m_protocol->saves;
    SmsSaveYourself(m_protocol->client, SmSaveBoth, sessionEnds ? True : False,
                    sessionEnds ? SmInteractStyleAny : SmInteractStyleNone, False);
    const bool saved = waitUntil([&] { return m_protocol->saves > before; });
    EXPECT_TRUE(saved) << "the program does not save its state";
    return saved && m_protocol->client;
}
