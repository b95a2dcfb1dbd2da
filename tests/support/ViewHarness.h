#pragma once
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <memory>
#include <string>

// Shows qrc:/Ombrix/<module>/<file> in a transparent frameless window of width x height and grabs what
// it draws; `root` is null, and `errors` says why, when the file does not load.
struct ViewHarness {
    ViewHarness(const QString& url, int width, int height);
    QImage grab();
    // Texts and symbols drawn past the edge of `content` (window pixels) or over one another; what a
    // clipping item hides (a closed card, a scrolled list) is not drawn.
    std::string misplaced(const QRectF& content) const;
    // By object name through the item tree (Repeater delegates are not QObject children).
    static QQuickItem* find(QQuickItem* from, const QString& objectName);
    QQuickItem* find(const QString& objectName) const { return find(root, objectName); }

    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window;
    QQuickItem* root = nullptr;
    QString errors;
};
