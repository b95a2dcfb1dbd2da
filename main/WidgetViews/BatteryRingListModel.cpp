#include "BatteryRingListModel.h"

int BatteryRingListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rings.size());
}

QVariant BatteryRingListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rings.size())
        return {};
    const BatteryRing& ring = m_rings[index.row()];
    const BatteryDevice& d = ring.device;
    switch (role) {
    case IdRole:
        return d.id;
    case NameRole:
        return d.name;
    case PercentRole:
        return d.percent;
    case ChargingRole:
        return d.charging;
    case TypeRole:
        return d.type;
    case IsSmallRole:
        return ring.isSmall;
    case CustomNameRole:
        return ring.customName;
    case IconNameRole:
        return batteryrules::iconName(d.type);
    case ArcColorRole:
        return batteryrules::arcColor(d.percent);
    case PercentTextRole:
        return batteryrules::percentText(d.percent);
    case StatusTextRole:
        return batteryrules::statusText(ring);
    default:
        return {};
    }
}

QHash<int, QByteArray> BatteryRingListModel::roleNames() const
{
    return {{IdRole, "id"},
            {NameRole, "name"},
            {PercentRole, "percent"},
            {ChargingRole, "charging"},
            {TypeRole, "type"},
            {IsSmallRole, "isSmall"},
            {CustomNameRole, "customName"},
            {IconNameRole, "iconName"},
            {ArcColorRole, "arcColor"},
            {PercentTextRole, "percentText"},
            {StatusTextRole, "statusText"}};
}

void BatteryRingListModel::setRings(const QList<BatteryRing>& rings)
{
    const auto sameIds = [&] {
        if (rings.size() != m_rings.size())
            return false;
        for (qsizetype i = 0; i < rings.size(); ++i) {
            if (rings[i].device.id != m_rings[i].device.id)
                return false;
        }
        return true;
    };
    if (!sameIds()) {
        beginResetModel();
        m_rings = rings;
        endResetModel();
        return;
    }
    m_rings = rings;
    if (!m_rings.isEmpty())
        emit dataChanged(index(0), index(int(m_rings.size()) - 1));
}
