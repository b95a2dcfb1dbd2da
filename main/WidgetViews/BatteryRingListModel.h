#pragma once
// The rings the battery widget draws, as a list model so that a device that stays keeps its
// delegate and its ring can animate to the new percent.
#include "BatteryRules.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQml/qqmlregistration.h>

class BatteryRingListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Owned by BatteryWidgetModel")

  public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        NameRole,
        PercentRole,
        ChargingRole,
        TypeRole,
        IsSmallRole,
        CustomNameRole,
        IconNameRole,
        ArcColorRole,
        PercentTextRole,
        StatusTextRole,
    };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Same ids in the same order: rows change in place. Otherwise the list is reset.
    void setRings(const QList<BatteryRing>& rings);
    const QList<BatteryRing>& rings() const { return m_rings; }

  private:
    QList<BatteryRing> m_rings;
};
