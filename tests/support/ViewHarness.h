#pragma once
// Shows one QML view in a real window of a given size and grabs what it draws.
#include <QImage>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <memory>
#include <string>

class ViewHarness {
  public:
    // Loads qrc:/Ombrix/<module>/<file> into a transparent frameless window of width x height.
    ViewHarness(const QString& url, int width, int height);

    QQuickItem* root() const { return m_root; }
    QQuickWindow* window() const { return m_window.get(); }
    QString errors() const { return m_errors; }
    // The view's own pixels, alpha kept.
    QImage grab();
    // Texts and symbols drawn past the edge of `content` (window pixels) or over one another.
    std::string misplaced(const QRectF& content) const;
    // By object name through the item tree (Repeater delegates are not QObject children).
    static QQuickItem* find(QQuickItem* from, const QString& objectName);
    QQuickItem* find(const QString& objectName) const { return find(m_root, objectName); }

  private:
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    QQuickItem* m_root = nullptr;
    QString m_errors;
};
