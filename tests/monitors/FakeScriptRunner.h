#pragma once
// Answers scripts from a table and records every script asked; a script not in the table fails.
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
