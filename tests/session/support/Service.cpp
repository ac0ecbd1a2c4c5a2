#include "tests/session/support/Service.h"

#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

Service::Service(Desktop &desktop)
    : environment(desktop.environment())
{
}

bool Service::attach(const Agent &agent)
{
    EXPECT_TRUE(waitUntil([&] { return agent.isLinked(); })) << "the agent receives no events";
    m_process.environment = environment;
    const QString pid = QString::number(agent.pid());
    const bool attached = m_process.start(QStringLiteral(KIV_BUILD_DIR "/sbin/kivservice"),
                                          {QStringLiteral("attach"), QStringLiteral("--pid"), pid}) &&
                          waitUntil([&] { return m_process.output().startsWith("attached " + pid.toLatin1() + '\n'); });
    EXPECT_TRUE(attached) << "the service cannot claim the agent";
    return attached;
}

void Service::send(const QByteArray &line)
{
    m_process.write(line + '\n');
}

bool Service::allow(const Agent &agent, const QByteArray &codes)
{
    // The link has no answers. What shows that the agent has taken a line in is its picture, so the commands go between
    // two changes of it.
    QImage off;
    const auto tell = [&] {
        off = agent.itemPicture();
        send("flags 6");
        const bool on = waitUntil([&] { return agent.itemPicture() != off; });
        send("actions " + codes);
        send("flags 2");
        return on && waitUntil([&] { return agent.itemPicture() == off; }, std::chrono::seconds(3));
    };
    // A panel that is still moving the item about never shows that first picture again.
    const bool told = tell() || tell();
    send("flags 6");
    const bool done = told && waitUntil([&] { return agent.itemPicture() != off; });
    EXPECT_TRUE(done) << "the item's picture does not follow the service";
    return done;
}

QByteArrayList Service::lines()
{
    QByteArrayList lines = m_process.output().split('\n');
    lines.removeFirst(); // "attached"
    lines.removeAll(QByteArray());
    return lines;
}

QByteArrayList Service::events()
{
    QByteArrayList events = lines();
    events.removeIf([](const QByteArray &line) { return !line.startsWith("meoa"); });
    return events;
}
