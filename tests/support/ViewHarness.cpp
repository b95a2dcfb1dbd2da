#include "ViewHarness.h"

#include "XSession.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickItemGrabResult>
#include <QSurfaceFormat>
#include <QTest>

namespace {

// Views are looked at on their own, not over a desktop: a window over the whole screen stands where
// a file manager's desktop window would, so the glass finds no wallpaper to frost.
void coverDesktop()
{
    static QWindow* cover = [] {
        auto* w = new QWindow();
        w->setFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint | Qt::WindowDoesNotAcceptFocus);
        w->setGeometry(QGuiApplication::primaryScreen()->geometry());
        w->show();
        XSession::waitFor([w] { return w->isExposed(); }, 5000);
        return w;
    }();
    Q_UNUSED(cover);
}

} // namespace

ViewHarness::ViewHarness(const QString& url, int width, int height)
{
    coverDesktop();
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    m_window = std::make_unique<QQuickWindow>();
    m_window->setFlags(Qt::FramelessWindowHint | Qt::Tool);
    QSurfaceFormat fmt = m_window->format();
    fmt.setAlphaBufferSize(8);
    m_window->setFormat(fmt);
    m_window->setColor(Qt::transparent);
    m_window->resize(width, height);
    QQmlComponent component(&m_engine, QUrl(url));
    m_root = qobject_cast<QQuickItem*>(component.create());
    if (!m_root) {
        m_errors = component.errorString();
        return;
    }
    m_root->setParentItem(m_window->contentItem());
    m_root->setParent(m_window.get());
    m_root->setSize(QSizeF(width, height));
    m_window->show();
    XSession::waitFor([this] { return m_window->isExposed(); }, 5000);
}

ViewHarness::~ViewHarness() = default;

void ViewHarness::resize(int width, int height)
{
    m_window->resize(width, height);
    if (m_root)
        m_root->setSize(QSizeF(width, height));
}

QImage ViewHarness::grab()
{
    for (int i = 0; i < 5; ++i)
        QTest::qWait(20);
    // The item's own layer keeps alpha, which a window's backing store may not.
    if (!m_root)
        return {};
    auto result = m_root->grabToImage();
    if (!result)
        return {};
    bool ready = false;
    QObject::connect(result.data(), &QQuickItemGrabResult::ready, [&ready] { ready = true; });
    XSession::waitFor([&ready] { return ready; }, 5000);
    return result->image().convertToFormat(QImage::Format_ARGB32);
}

double brightness(const QImage& img, const QRect& r)
{
    double sum = 0;
    int n = 0;
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) {
            const QColor c = img.pixelColor(x, y);
            sum += (c.red() + c.green() + c.blue()) / 3.0 * c.alphaF();
            ++n;
        }
    return n ? sum / n : 0;
}

QQuickItem* findItem(QQuickItem* from, const QString& objectName)
{
    if (!from)
        return nullptr;
    if (from->objectName() == objectName)
        return from;
    for (QQuickItem* child : from->childItems())
        if (QQuickItem* found = findItem(child, objectName))
            return found;
    return nullptr;
}
