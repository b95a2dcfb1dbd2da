// With a StatusNotifier host on the session bus (Xfce's panel, KDE's), the tray item registers
// there, with the coloured icon and the two-entry menu, instead of waiting for an XEmbed tray.
#include "PrivateBus.h"
#include "XSession.h"

#include <QDBusArgument>
#include <QDBusInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <gtest/gtest.h>

namespace {

// The watcher side of the protocol: enough for an item to find a host and register.
class Watcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

  public:
    bool hostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList items() const { return m_items; }
    QStringList m_items;

  public slots:
    void RegisterStatusNotifierItem(const QString& service, const QDBusMessage& message)
    {
        m_items << (service.startsWith('/') ? message.service() : service);
    }
    void RegisterStatusNotifierHost(const QString&) {}

  signals:
    void StatusNotifierItemRegistered(const QString& service);
    void StatusNotifierHostRegistered();
};

} // namespace

TEST(StatusNotifier, TrayItemRegistersWithTheHostWithItsColouredIcon)
{
    PrivateBus bus;
    ASSERT_TRUE(bus.isRunning());
    QDBusConnection c = bus.connection();
    Watcher watcher;
    ASSERT_TRUE(c.registerObject("/StatusNotifierWatcher", &watcher, QDBusConnection::ExportAllContents));
    ASSERT_TRUE(c.registerService("org.kde.StatusNotifierWatcher"));

    XSession x;
    ASSERT_TRUE(x.ok());
    QProcessEnvironment env;
    env.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
    ASSERT_TRUE(x.startApp(env));
    ASSERT_TRUE(XSession::waitFor([&] { return !watcher.m_items.isEmpty(); }, 15000));

    // The icon travels as ARGB pixmaps: the 22 px one is mostly our blue face, not white.
    QDBusMessage get = QDBusMessage::createMethodCall(watcher.m_items.first(), "/StatusNotifierItem",
                                                      "org.freedesktop.DBus.Properties", "Get");
    get << "org.kde.StatusNotifierItem"
        << "IconPixmap";
    const QDBusMessage reply = c.call(get, QDBus::Block, 5000);
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    const QDBusArgument pixmaps = reply.arguments().value(0).value<QDBusVariant>().variant().value<QDBusArgument>();
    int blue = 0, white = 0, sizes = 0;
    pixmaps.beginArray();
    while (!pixmaps.atEnd()) {
        int w = 0, h = 0;
        QByteArray argb;
        pixmaps.beginStructure();
        pixmaps >> w >> h >> argb;
        pixmaps.endStructure();
        ++sizes;
        // Network byte order: A, R, G, B.
        for (int i = 0; i + 3 < argb.size(); i += 4) {
            const auto px = reinterpret_cast<const uchar*>(argb.constData() + i);
            blue += px[0] == 255 && px[3] > 200 && px[1] < 100;
            white += px[0] == 255 && px[1] == 255 && px[2] == 255 && px[3] == 255;
        }
    }
    pixmaps.endArray();
    EXPECT_GE(sizes, 1);
    EXPECT_GT(blue, 2 * white);
}

#include "StatusNotifierTest.moc"
