#include "ControlPanelModel.h"

ControlPanelModel::ControlPanelModel(QObject* parent) : QObject(parent) {}

void ControlPanelModel::setCallbacks(ToggleCallback onToggleWidget, ResizeCallback onResizeWidget,
                                     ToggleCallback onClickThroughChanged)
{
    m_onToggleWidget = std::move(onToggleWidget);
    m_onResizeWidget = std::move(onResizeWidget);
    m_onClickThroughChanged = std::move(onClickThroughChanged);
}

void ControlPanelModel::setActiveTab(const QString& tab)
{
    m_activeTab = tab;
    emit activeTabChanged();
}
