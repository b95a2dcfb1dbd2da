#pragma once
// The monitors' outside sources, answered from fields: scripts from a table (one not in it fails, every
// one asked is recorded), the battery tools' texts as set (pmset's reads counted).
#include "BatteryTextSource.h"
#include "ScriptRunner.h"

#include <QHash>
#include <QStringList>

class FakeScriptRunner : public ScriptRunner {
  public:
    std::optional<QString> run(const QString& script) override
    {
        asked << script;
        return replies.value(script);
    }

    QHash<QString, std::optional<QString>> replies;
    QStringList asked;
};

struct FakeBatteryTexts : BatteryTextSource {
    QString pmset, ioreg, name;
    int reads = 0;
    QString pmsetText() override { return ++reads, pmset; }
    QString ioregText() override { return ioreg; }
    QString computerName() override { return name; }
};
