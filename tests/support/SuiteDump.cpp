// A second process for suite tests: opens a suite and prints each asked key with its kind.
// usage: ombrix-suite-dump CONFIG_DIR SUITE KEY...
#include "DefaultsSuite.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const auto args = app.arguments();
    if (args.size() < 3)
        return 2;
    auto suite = DefaultsSuite::open(args[2], args[1]);
    if (!suite)
        return 3;
    QJsonObject out;
    for (const auto& key : args.mid(3)) {
        QJsonObject v;
        if (auto b = suite->boolForKey(key))
            v.insert("bool", *b);
        if (auto s = suite->stringForKey(key))
            v.insert("string", *s);
        if (auto d = suite->dataForKey(key))
            v.insert("data", QString::fromUtf8(*d));
        if (auto l = suite->stringArrayForKey(key))
            v.insert("list", QJsonArray::fromStringList(*l));
        out.insert(key, v);
    }
    std::fputs(QJsonDocument(out).toJson(QJsonDocument::Compact).constData(), stdout);
    return 0;
}
