#include "ViewHarness.h"

#include "XSession.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickItemGrabResult>

ViewHarness::ViewHarness(const QString& url, int width, int height)
{
    // A window over the whole screen stands where a file manager's desktop would, so the glass finds
    // no wallpaper to frost: views are looked at on their own.
    [[maybe_unused]] static const bool covered = [] {
        auto* w = new QWindow();
        w->setFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint | Qt::WindowDoesNotAcceptFocus);
        w->setGeometry(QGuiApplication::primaryScreen()->geometry());
        w->show();
        return XSession::waitFor([w] { return w->isExposed(); }, 5000);
    }();
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    window = std::make_unique<QQuickWindow>();
    window->setFlags(Qt::FramelessWindowHint | Qt::Tool);
    window->setColor(Qt::transparent);
    window->resize(width, height);
    engine.addImportPath("qrc:/");
    QQmlComponent component(&engine, QUrl(url));
    root = qobject_cast<QQuickItem*>(component.create());
    errors = component.errorString();
    if (!root)
        return;
    root->setParentItem(window->contentItem());
    root->setParent(window.get());
    root->setSize(QSizeF(width, height));
    window->show();
    XSession::waitFor([this] { return window->isExposed(); }, 5000);
}

QImage ViewHarness::grab()
{
    auto result = root ? root->grabToImage() : nullptr;
    bool ready = false;
    if (result)
        QObject::connect(result.data(), &QQuickItemGrabResult::ready, [&ready] { ready = true; });
    return XSession::waitFor([&ready] { return ready; }, 5000) ? result->image().convertToFormat(QImage::Format_ARGB32)
                                                               : QImage();
}

QQuickItem* ViewHarness::find(QQuickItem* from, const QString& objectName)
{
    if (!from || from->objectName() == objectName)
        return from;
    for (QQuickItem* child : from->childItems())
        if (QQuickItem* found = find(child, objectName))
            return found;
    return nullptr;
}

namespace {

void drawnItems(QQuickItem* item, QRectF shown, QList<QPair<QQuickItem*, QRectF>>& out)
{
    if (!item->isVisible() || item->opacity() == 0)
        return;
    const QRectF box = item->mapRectToScene(item->boundingRect());
    shown &= item->clip() ? box : shown;
    const bool text = item->inherits("QQuickText") && !item->property("text").toString().isEmpty();
    if ((text || item->inherits("Symbol")) && shown.adjusted(-1, -1, 1, 1).contains(box)) // drawn whole
        out.append({item, box});
    for (QQuickItem* child : item->childItems())
        drawnItems(child, shown, out);
}

} // namespace

std::string ViewHarness::misplaced(const QRectF& content) const
{
    QList<QPair<QQuickItem*, QRectF>> drawn;
    QStringList faults;
    drawnItems(root, root->mapRectToScene(root->boundingRect()), drawn);
    const auto name = [&](int k) { return drawn[k].first->objectName() + drawn[k].first->property("text").toString(); };
    for (int i = 0; i < drawn.size(); ++i) {
        if (!content.adjusted(-2, -2, 2, 2).contains(drawn[i].second))
            faults << name(i) + " cut";
        for (int j = 0; j < i; ++j) { // a symbol may badge another, nothing may cover a text
            const QRectF both = drawn[i].second & drawn[j].second;
            const bool texts = !drawn[i].first->inherits("Symbol") || !drawn[j].first->inherits("Symbol");
            if (texts && both.width() * both.height() > 4)
                faults << name(i) + " over " + name(j);
        }
    }
    return faults.join("; ").toStdString();
}
