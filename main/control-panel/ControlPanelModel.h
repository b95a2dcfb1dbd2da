#pragma once
// The Control Panel's view state and the steps each of its controls runs. The application hands it
// the three callbacks; the QML tree only binds to it.
#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <functional>

class ControlPanelModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString activeTab READ activeTab WRITE setActiveTab NOTIFY activeTabChanged)

public:
    using ToggleCallback = std::function<void(const QString& name, bool enabled)>;
    using ResizeCallback = std::function<void(const QString& name, const QString& size)>;

    explicit ControlPanelModel(QObject* parent = nullptr);

    void setCallbacks(ToggleCallback onToggleWidget, ResizeCallback onResizeWidget,
                      ToggleCallback onClickThroughChanged);

    QString activeTab() const { return m_activeTab; }
    void setActiveTab(const QString& tab);

signals:
    void activeTabChanged();

private:
    QString m_activeTab = "widgets";
    ToggleCallback m_onToggleWidget;
    ResizeCallback m_onResizeWidget;
    ToggleCallback m_onClickThroughChanged;
};
