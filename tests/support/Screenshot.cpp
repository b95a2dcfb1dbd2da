// Saves the whole X screen (what a person would see) as a PNG: ombrix-screenshot FILE [X,Y,W,H ...]
// With areas, also tells how many colours each holds and fails (exit 3) when one is flat: a window
// whose scene did not load is one colour.
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QSet>
#include <cstdio>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    if (argc < 2 || !QGuiApplication::primaryScreen())
        return 2;
    const QImage shot = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
    if (!shot.save(QString::fromLocal8Bit(argv[1]), "PNG"))
        return 1;
    int code = 0;
    for (int i = 2; i < argc; ++i) {
        const QStringList n = QString::fromLocal8Bit(argv[i]).split(',');
        const QRect area = n.size() == 4 ? QRect(n[0].toInt(), n[1].toInt(), n[2].toInt(), n[3].toInt()) : QRect();
        QSet<QRgb> colours;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                if (shot.valid(x, y))
                    colours.insert(shot.pixel(x, y));
        std::printf("area %s: %lld colours\n", argv[i], static_cast<long long>(colours.size()));
        if (colours.size() < 16)
            code = 3;
    }
    return code;
}
