#include "BatteryMonitor.h"
#include "BatteryFixtures.h"
#include "FakePowerSupplyTree.h"
#include "OutsideData.h"
#include "SettingsManager.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Reaches the monitor's private shell().
struct BatteryMonitorProbe {
    static QString shell(const QString& command) { return BatteryMonitor::shell(command); }
};

namespace {

BatteryDevice macbook(qint64 percent, bool charging)
{
    return {"macbook", "MacBook", percent, charging, "macbook"};
}

BatteryDevice accessory(const QString& id, const QString& name, qint64 percent, const QString& type)
{
    return {id, name, percent, false, type};
}

const QString magicMouseBlock =
    "+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, "
    "id 0x1a3b, registered>\n"
    "    {\n"
    "      \"BatteryPercent\" = 64\n"
    "      \"Product\" = \"Magic Mouse\"\n"
    "    }\n";

QString withoutProduct(QString block)
{
    return block.remove("      \"Product\" = \"Magic Mouse\"\n");
}

// Points PATH at one folder for the length of a scope.
class PathScope {
  public:
    explicit PathScope(const QString& path) : m_old(qgetenv("PATH")) { qputenv("PATH", path.toUtf8()); }
    ~PathScope() { qputenv("PATH", m_old); }

  private:
    QByteArray m_old;
};

void writeTool(const QString& dir, const QString& name, const QByteArray& script)
{
    QFile file(dir + '/' + name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n" + script);
    file.close();
    file.setPermissions(file.permissions() | QFile::ExeOwner);
}

} // namespace

TEST(BatteryMonitor, PmsetTextGivesTheMachinesRecord)
{
    struct Case {
        const char* what;
        QString text;
        qint64 percent;
        bool charging;
    };
    const QList<Case> cases = {
        {"AC, charging", "Now drawing from 'AC Power'\n -InternalBattery-0 (id=1234) 87%; charging; 0:42 remaining", 87,
         true},
        {"battery, discharging",
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1234) 54%; discharging; 3:10 remaining", 54, false},
        {"AC and nothing else", "Now drawing from 'AC Power'", 100, true},
        {"nothing", "", 100, false},
        {"only the first percentage counts", "at 12% now, was 99% before", 12, false},
        {"AC wins over discharging", "Now drawing from 'AC Power'\n 40%; discharging", 40, true},
        {"charging without AC text", "-InternalBattery-0 33%; charging", 33, true},
        {"capital Charging does not count", "-InternalBattery-0 33%; Charging", 33, false},
        {"not clamped", "999%", 999, false},
        {"largest 64-bit number", "9223372036854775807%", 9223372036854775807, false},
        {"one past it", "9223372036854775808%", 100, false},
        {"leading zeros", "007%", 7, false},
        {"minus is not part of the number", "-5%", 5, false},
        {"digits of another script count as a match that fails", QString::fromUtf8("\xd9\xa8\xd9\xa7% then 50%"), 100,
         false},
        {"a number without percent", "id=1234", 100, false},
        {"the text is not split into lines", "Now drawing from\n'AC Power'\ndischarging\n8\n%", 100, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(BatteryMonitor::parseInternalBattery(c.text), macbook(c.percent, c.charging));
    }
}

TEST(BatteryMonitor, IoregBlocksGiveAccessories)
{
    struct Case {
        const char* what;
        QString text;
        QList<BatteryDevice> expected;
    };
    const QString header = "+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, "
                           "id 0x1, registered>\n";
    const QList<Case> cases = {
        {"the Magic Mouse block", magicMouseBlock, {accessory("magic-mouse", "Magic Mouse", 64, "mouse")}},
        {"no name key: the header's class name is cleared", withoutProduct(magicMouseBlock), {}},
        {"header name kept when it is no service class",
         "+-o ExampleMouseDriver  <class ExampleMouseDriver, id 0x1c10, registered>\n  {\n    \"BatteryPercent\" = "
         "30\n  }\n",
         {accessory("examplemousedriver", "ExampleMouseDriver", 30, "mouse")}},
        {"the other two service classes are cleared too",
         "+-o AppleBluetoothHIDDevice  <class AppleBluetoothHIDDevice, id 0x2>\n \"BatteryPercent\" = 3\n"
         "+-o AppleDeviceBluetoothHIDDriver  <class AppleDeviceBluetoothHIDDriver, id 0x3>\n \"BatteryPercent\" = 4\n",
         {}},
        {"a product named as a service class is cleared",
         header + "\"BatteryPercent\" = 5\n\"Product\" = \"AppleBluetoothHIDDevice\"\n",
         {}},
        {"header name with blanks, trimmed, CRLF lines",
         "+-o   Tastiera di Bo \t <class IOService, id 0x4>\r\n  \"BatteryPercent\" = 12\r\n",
         {accessory("tastiera-di-bo", "Tastiera di Bo", 12, "accessory")}},
        {"the header rule reads only the first line", "+-o Foo\n  <class X>\n  \"BatteryPercent\" = 12\n", {}},
        {"percent that is no number",
         header + "\"BatteryPercent\" = \"x\"\n\"Product\" = \"Game Pad\"\n",
         {accessory("game-pad", "Game Pad", 100, "accessory")}},
        {"percent past 64 bits",
         header + "\"BatteryPercent\" = 99999999999999999999\n\"Product\" = \"Pad\"\n",
         {accessory("pad", "Pad", 100, "accessory")}},
        {"no BatteryPercent: nothing, even with a product", header + "\"Product\" = \"Magic Mouse\"\n", {}},
        {"a longer key passes the block test but gives no percent",
         header + "\"BatteryPercentRemaining\" = 50\n\"Product\" = \"Pad\"\n",
         {accessory("pad", "Pad", 100, "accessory")}},
        {"the longer key beside the real one",
         header + "\"BatteryPercentRemaining\" = 50\n\"BatteryPercent\" = 30\n\"Product\" = \"Pad\"\n",
         {accessory("pad", "Pad", 30, "accessory")}},
        {"an empty product passes to the next key",
         header + "\"BatteryPercent\" = 9\n\"Product\" = \"\"\n\"Name\" = \"Vecchio Mouse\"\n",
         {accessory("vecchio-mouse", "Vecchio Mouse", 9, "mouse")}},
        {"DeviceProduct standing first answers the Product pattern",
         header + "\"DeviceProduct\" = \"Primo\"\n\"Product\" = \"Secondo\"\n\"BatteryPercent\" = 1\n",
         {accessory("primo", "Primo", 1, "accessory")}},
        {"Product standing first wins",
         header + "\"Product\" = \"Primo\"\n\"DeviceProduct\" = \"Secondo\"\n\"BatteryPercent\" = 1\n",
         {accessory("primo", "Primo", 1, "accessory")}},
        {"any key ending in Name",
         header + "\"ProductID\" = 613\n\"BluetoothDeviceName\" = \"Cuffie\"\n\"BatteryPercent\" = 2\n",
         {accessory("cuffie", "Cuffie", 2, "accessory")}},
        {"unquoted keys, values across a line break",
         header + "BatteryPercent =\n 45\nProduct=\n\"Magic Keyboard\"\n",
         {accessory("magic-keyboard", "Magic Keyboard", 45, "keyboard")}},
        {"spaces of any script around the equals sign",
         header + QString::fromUtf8("\"BatteryPercent\"\u00a0=\u2003 33\n\"Product\"\u00a0= \"Pad\"\n"),
         {accessory("pad", "Pad", 33, "accessory")}},
        {"digits of another script belong to the number, which then fails",
         header + QString::fromUtf8("\"BatteryPercent\" = 3\u0663\n\"Product\" = \"Pad\"\n"),
         {accessory("pad", "Pad", 100, "accessory")}},
        {"an unclosed quote reads no name", header + "\"BatteryPercent\" = 4\n\"Product\" = \"Pad\n", {}},
        {"accessories never charge",
         header + "\"BatteryPercent\" = 20\n\"Product\" = \"Pad\"\n\"Status\" = \"charging\"\n",
         {accessory("pad", "Pad", 20, "accessory")}},
        {"the piece ahead of the first marker is a block",
         "\"BatteryPercent\" = 70\n\"Product\" = \"Senza Marcatore\"\n",
         {accessory("senza-marcatore", "Senza Marcatore", 70, "accessory")}},
        {"the piece ahead of the first marker has no header", " Foo  <class Foo>\n\"BatteryPercent\" = 70\n", {}},
        {"same name twice, same id twice, not sorted",
         accessoryBlock("Magic Mouse", 80) + accessoryBlock("Apple Watch", 50) + accessoryBlock("Magic Mouse", 20),
         {accessory("magic-mouse", "Magic Mouse", 80, "mouse"), accessory("apple-watch", "Apple Watch", 50, "watch"),
          accessory("magic-mouse", "Magic Mouse", 20, "mouse")}},
        {"an accessory named MacBook",
         accessoryBlock("MacBook", 50),
         {accessory("macbook", "MacBook", 50, "accessory")}},
        {"a name longer than any screen is cut",
         accessoryBlock(QString(5000, 'N'), 50),
         {accessory(QString(outside::maxTextLength, 'n'), QString(outside::maxTextLength, 'N'), 50, "accessory")}},
        {"names keep their case and non-ASCII letters",
         accessoryBlock(QString::fromUtf8("Über Maus"), 50),
         {accessory(QString::fromUtf8("über-maus"), QString::fromUtf8("Über Maus"), 50, "accessory")}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(BatteryMonitor::parseAccessories(c.text), c.expected);
    }
}

TEST(BatteryMonitor, NamesAreClassifiedInTableOrder)
{
    const QList<std::pair<QString, QString>> cases = {
        {"MX Master MOUSE", "mouse"},
        {"Magic Keyboard with Touch ID", "keyboard"},
        {"Keyboard and Trackpad Combo", "keyboard"},
        {"Trackpad with Mouse Buttons", "mouse"},
        {"Apple Pencil", "pencil"},
        {"Studio Headphones", "airpods"},
        {"Apple Watch", "watch"},
        {"Watch Headphone Stand", "airpods"},
        {"Game Controller", "accessory"},
        {"", "accessory"},
    };
    for (const auto& [name, type] : cases) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(BatteryMonitor::deviceType(name), type);
    }
}

TEST(BatteryMonitor, RealWorldShapes)
{
    // Several accessories as a Mac prints them, with the keys around the ones that matter.
    const QString ioreg = QString::fromUtf8(
        R"(+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, id 0x100000c4b, registered, matched, active, busy 0 (0 ms), retain 7>
    {
      "LowBatteryNotificationPercentage" = 2
      "PrimaryUsagePage" = 65280
      "HasBattery" = Yes
      "VendorID" = 76
      "DeviceAddress" = "ac-49-db-00-11-22"
      "Product" = "Magic Keyboard with Touch ID and Numeric Keypad"
      "Transport" = "Bluetooth"
      "ProductID" = 666
      "BatteryPercent" = 83
      "BatteryStatusFlags" = 3
      "IOProviderClass" = "IOHIDInterface"
    }
    
+-o AirPods di Giulia  <class IOBluetoothDevice, id 0x100000e01, registered, matched, active, busy 0 (0 ms), retain 6>
    {
      "BatteryPercentCase" = 90
      "BatteryPercent" = 71
      "Transport" = "Bluetooth"
    }
    
+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, id 0x100000e03, registered, matched, active, busy 0 (0 ms), retain 6>
    {
      "BatteryPercent" = 44
      "VendorID" = 76
    }
    
)");
    const QString pmset = "Now drawing from 'Battery Power'\n"
                          " -InternalBattery-0 (id=6619235)\t15%; discharging; 1:02 remaining present: true\n";
    const QList<BatteryDevice> expected = {
        macbook(15, false),
        accessory("magic-keyboard-with-touch-id-and-numeric-keypad", "Magic Keyboard with Touch ID and Numeric Keypad",
                  83, "keyboard"),
        accessory("airpods-di-giulia", "AirPods di Giulia", 71, "airpods"),
    };
    EXPECT_EQ(BatteryMonitor::parseBatteryDevices(pmset, ioreg), expected);
}

TEST(BatteryMonitor, ShellRunsThroughZsh)
{
    ASSERT_TRUE(QFile::exists("/bin/zsh")) << "zsh is installed by scripts/deps.sh";
    struct Case {
        const char* what;
        QString command;
        QString expected;
    };
    const QList<Case> cases = {
        {"output untrimmed", "printf 'a\\nb\\n\\n'", "a\nb\n\n"},
        {"both streams, in order", "echo uno; echo due >&2; echo tre", "uno\ndue\ntre\n"},
        {"quotes are the shell's", R"(echo "a  b" 'c')", "a  b c\n"},
        {"exit status ignored", "echo rotto; exit 7", "rotto\n"},
        {"not UTF-8", R"(printf 'ok \xff\xfe')", ""},
        {"UTF-8 passes", R"(printf 'Caff\xc3\xa8')", QString::fromUtf8("Caff\xc3\xa8")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(BatteryMonitorProbe::shell(c.command), c.expected);
    }
}

TEST(BatteryMonitor, ShellMissingToolGivesItsErrorText)
{
    const QString out = BatteryMonitorProbe::shell("ombrix-no-such-tool -g batt");
    EXPECT_TRUE(out.contains("command not found")) << out.toStdString();
    EXPECT_EQ(BatteryMonitor::parseBatteryDevices(out, out), QList<BatteryDevice>{macbook(100, false)});
}

TEST(BatteryMonitor, ShellDrainsLargeOutput)
{
    const qsizetype size = 2 * 1024 * 1024;
    const QString out =
        BatteryMonitorProbe::shell(QString("head -c %1 /dev/zero | tr '\\0' a; echo fine >&2").arg(size));
    ASSERT_EQ(out.size(), size + 5);
    EXPECT_EQ(out.count('a'), size);
    EXPECT_TRUE(out.endsWith("fine\n"));
}

TEST(BatteryMonitor, ComputerNameFallsBackToMacBook)
{
    FakeBatteryScope scope;
    const QList<std::pair<QString, QString>> cases = {
        {"", "MacBook"}, {"Mac di Anna", "Mac di Anna"}, {QString(5000, 'A'), QString(outside::maxTextLength, 'A')}};
    for (const auto& [given, expected] : cases) {
        scope.texts->name = given;
        EXPECT_EQ(BatteryMonitor::shared().getComputerName(), expected);
    }
}

TEST(BatteryMonitor, DevicesComeFromTheSourceEachCall)
{
    FakeBatteryScope scope;
    EXPECT_EQ(BatteryMonitor::shared().getBatteryDevices(), QList<BatteryDevice>{macbook(100, false)});
    scope.texts->pmset = "Now drawing from 'AC Power'\n 5%; charging";
    scope.texts->ioreg = magicMouseBlock;
    EXPECT_EQ(BatteryMonitor::shared().getBatteryDevices(),
              (QList<BatteryDevice>{macbook(5, true), accessory("magic-mouse", "Magic Mouse", 64, "mouse")}));
    EXPECT_EQ(scope.texts->pmsetCalls, 2);
    EXPECT_EQ(scope.texts->ioregCalls, 2);
}

TEST(BatteryMonitor, LinuxTreeWhenTheToolsAreMissing)
{
    // The tree's own reading rules are checked where the tree is read; this proves both halves meet.
    QTemporaryDir emptyPath;
    PathScope path(emptyPath.path());
    FakePowerSupplyTree tree;
    tree.addLaptopBattery("BAT0", 15, "Charging");
    tree.addMains("AC", true);
    tree.addDeviceBattery("hid-1-battery", "Wireless Mouse M510", 64);
    tree.addDeviceBattery("hid-2-battery", "Studio Headphones", 40);
    tree.addSupply("hid-3-battery", {{"type", "Battery"}, {"scope", "Device"}, {"capacity", "30"}}); // unnamed: dropped
    BatteryMonitor::shared().setTextSource(std::make_unique<SystemBatteryTexts>(tree.root()));
    EXPECT_EQ(
        BatteryMonitor::shared().getBatteryDevices(),
        (QList<BatteryDevice>{macbook(15, true), accessory("wireless-mouse-m510", "Wireless Mouse M510", 64, "mouse"),
                              accessory("studio-headphones", "Studio Headphones", 40, "airpods")}));
    BatteryMonitor::shared().setTextSource(nullptr);
}

TEST(BatteryMonitor, TheAppsSourceReadsTheTreeTheSettingsName)
{
    QTemporaryDir emptyPath;
    PathScope path(emptyPath.path());
    FakePowerSupplyTree tree;
    tree.addLaptopBattery("BAT0", 15, "Charging");
    tree.addDeviceBattery("hid-1-battery", "Magic Mouse", 64);
    auto& settings = SettingsManager::shared();
    SystemBatteryTexts texts; // no tree of its own: asks the settings at each reading
    struct Case {
        const char* what;
        QString configured;
        QList<BatteryDevice> expected;
    };
    const QList<Case> cases = {
        {"named tree", tree.root(), {macbook(15, true), accessory("magic-mouse", "Magic Mouse", 64, "mouse")}},
        // An empty or missing folder is read as it is: no battery, so on mains, and no accessories.
        {"missing folder", tree.root() + "/nowhere", {macbook(100, true)}},
        {"named tree again", tree.root(), {macbook(15, true), accessory("magic-mouse", "Magic Mouse", 64, "mouse")}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        settings.saveSetting(c.configured, SystemBatteryTexts::rootConfigKey);
        EXPECT_EQ(BatteryMonitor::parseBatteryDevices(texts.pmsetText(), texts.ioregText()), c.expected);
    }
    // Cleared, it is the kernel's tree again: whatever this machine has, never the fake one.
    settings.saveSetting(QString(), SystemBatteryTexts::rootConfigKey);
    EXPECT_FALSE(texts.ioregText().contains("Magic Mouse"));
}

TEST(BatteryMonitor, ToolsOnThePathAreRunInsteadOfTheTree)
{
    QTemporaryDir tools;
    writeTool(tools.path(), "pmset",
              "[ \"$*\" = '-g batt' ] && printf \"Now drawing from 'AC Power'\\n 61%%; charged\\n\"\n");
    // The quotes around BatteryPercent are the shell's: the tool sees the bare word.
    writeTool(tools.path(), "ioreg",
              "[ \"$5\" = BatteryPercent ] && printf '+-o X  <class X>\\n \"BatteryPercent\" = 12\\n \"Product\" = "
              "\"Magic Mouse\"\\n'\n");
    PathScope path(tools.path() + ":/usr/bin:/bin");
    FakePowerSupplyTree tree;
    tree.addLaptopBattery("BAT0", 15, "Discharging");
    BatteryMonitor::shared().setTextSource(std::make_unique<SystemBatteryTexts>(tree.root()));
    EXPECT_EQ(BatteryMonitor::shared().getBatteryDevices(),
              (QList<BatteryDevice>{macbook(61, true), accessory("magic-mouse", "Magic Mouse", 12, "mouse")}));

    // A tool that fails or prints bytes that are not text gives the quiet defaults.
    writeTool(tools.path(), "pmset", "echo 'pmset: error 500' >&2; exit 1\n");
    writeTool(tools.path(), "ioreg", "printf '\\377\\376BatteryPercent'\n");
    EXPECT_EQ(BatteryMonitor::shared().getBatteryDevices(), QList<BatteryDevice>{macbook(100, false)});

    // One tool present, the other read from the tree; a source looks for the tools once.
    QFile::remove(tools.path() + "/ioreg");
    tree.addDeviceBattery("hid-1-battery", "Magic Trackpad", 33);
    EXPECT_EQ(BatteryMonitor::shared().getBatteryDevices(), QList<BatteryDevice>{macbook(100, false)});
    BatteryMonitor::shared().setTextSource(std::make_unique<SystemBatteryTexts>(tree.root()));
    EXPECT_EQ(
        BatteryMonitor::shared().getBatteryDevices(),
        (QList<BatteryDevice>{macbook(100, false), accessory("magic-trackpad", "Magic Trackpad", 33, "trackpad")}));
    BatteryMonitor::shared().setTextSource(nullptr);
}
