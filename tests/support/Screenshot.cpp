// Saves the whole X screen (what a person would see) as a PNG: ombrix-screenshot FILE
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    if (argc < 2 || !QGuiApplication::primaryScreen())
        return 2;
    return QGuiApplication::primaryScreen()->grabWindow(0).save(QString::fromLocal8Bit(argv[1]), "PNG") ? 0 : 1;
}
