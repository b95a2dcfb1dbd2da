#pragma once
// The panel's words that name the system it runs on, for QML.
#include "SystemWords.h"

#include <QObject>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

class SystemTexts : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString panelSubtitle MEMBER m_panelSubtitle CONSTANT)
    Q_PROPERTY(QString musicSources MEMBER m_musicSources CONSTANT)
    // [{label, key}] in the order the battery card lists them.
    Q_PROPERTY(QVariantList deviceCategories READ deviceCategories CONSTANT)

  public:
    QVariantList deviceCategories() const
    {
        QVariantList out;
        for (const auto& c : systemwords::deviceCategories)
            out.append(QVariantMap{{"label", c.label}, {"key", c.key}});
        return out;
    }

  private:
    QString m_panelSubtitle = systemwords::panelSubtitle;
    QString m_musicSources = systemwords::musicSources;
};
