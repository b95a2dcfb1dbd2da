#pragma once
// Shows one QML view in a real window of a given size and grabs what it draws.
#include <QImage>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <memory>
#include <string>

// Loads qrc:/Ombrix/<module>/<file> into a transparent frameless window of width x height; `root`
// is null, and `errors` says why, when the file does not load.
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
