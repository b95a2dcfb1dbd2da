#pragma once
// Shows one QML view in a real window of a given size and grabs what it draws.
#include <QImage>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <memory>

QQuickItem* findItem(QQuickItem* from, const QString& objectName);

class ViewHarness {
  public:
    // Loads qrc:/Ombrix/<module>/<file> into a transparent frameless window of width x height.
    ViewHarness(const QString& url, int width, int height);
    ~ViewHarness();

    QQuickItem* root() const { return m_root; }
    QQuickWindow* window() const { return m_window.get(); }
    QString errors() const { return m_errors; }
    void resize(int width, int height);

    // Lets bindings and painting settle, then grabs the window's own pixels.
    QImage grab();
    // By object name through the item tree (Repeater delegates are not QObject children).
    template <typename T> T* find(const QString& objectName) const
    {
        return qobject_cast<T*>(findItem(m_root, objectName));
    }

  private:
    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    QQuickItem* m_root = nullptr;
    QString m_errors;
};

// Mean brightness (0..255) of the pixels of `img` inside `r`, composed over black.
double brightness(const QImage& img, const QRect& r);
