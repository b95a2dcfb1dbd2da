// Compares two screenshots pixel by pixel and says where they differ, so a change meant to leave the
// look alone can be checked outside the parts that move (the clock's hands and time).
//   screenshot_diff BEFORE.png AFTER.png [MASK.png]
// Prints the number of differing pixels, the largest difference in any channel, and the bounding box
// of the differences inside each rectangle given as X,Y,W,H in OMBRIX_DIFF_AREAS (e.g. the widget
// windows), or of all of them. MASK, if given, is white where the pixels differ.
#include <QImage>
#include <QRect>
#include <QStringList>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: screenshot_diff BEFORE.png AFTER.png [MASK.png]\n");
        return 2;
    }
    const QImage a = QImage(QString::fromLocal8Bit(argv[1])).convertToFormat(QImage::Format_RGB32);
    const QImage b = QImage(QString::fromLocal8Bit(argv[2])).convertToFormat(QImage::Format_RGB32);
    if (a.isNull() || b.isNull() || a.size() != b.size()) {
        std::fprintf(stderr, "screenshot_diff: unreadable images or different sizes\n");
        return 2;
    }
    QList<QRect> areas;
    for (const QString& area : qEnvironmentVariable("OMBRIX_DIFF_AREAS").simplified().split(' ', Qt::SkipEmptyParts)) {
        const QStringList n = area.split(',');
        if (n.size() == 4)
            areas << QRect(n[0].toInt(), n[1].toInt(), n[2].toInt(), n[3].toInt());
    }
    if (areas.isEmpty())
        areas << a.rect();
    QImage mask(a.size(), QImage::Format_Grayscale8);
    mask.fill(0);
    for (const QRect& area : std::as_const(areas)) {
        long count = 0;
        int worst = 0;
        QRect box;
        for (int y = std::max(0, area.top()); y <= std::min(a.height() - 1, area.bottom()); ++y) {
            const auto* pa = reinterpret_cast<const QRgb*>(a.constScanLine(y));
            const auto* pb = reinterpret_cast<const QRgb*>(b.constScanLine(y));
            for (int x = std::max(0, area.left()); x <= std::min(a.width() - 1, area.right()); ++x) {
                if (pa[x] == pb[x])
                    continue;
                ++count;
                worst = std::max({worst, std::abs(qRed(pa[x]) - qRed(pb[x])), std::abs(qGreen(pa[x]) - qGreen(pb[x])),
                                  std::abs(qBlue(pa[x]) - qBlue(pb[x]))});
                box |= QRect(x, y, 1, 1);
                mask.scanLine(y)[x] = 255;
            }
        }
        std::printf("area %d,%d %dx%d: %ld pixels differ, largest channel difference %d, within %d,%d %dx%d\n",
                    area.x(), area.y(), area.width(), area.height(), count, worst, box.x(), box.y(), box.width(),
                    box.height());
    }
    if (argc > 3)
        mask.save(QString::fromLocal8Bit(argv[3]));
    return 0;
}
