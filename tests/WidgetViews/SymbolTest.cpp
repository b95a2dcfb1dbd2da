#include "Symbol.h"

#include <QDir>
#include <QFont>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QSet>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

const QStringList kNames = {
    "clock",
    "cloud.sun",
    "battery.100",
    "music.note",
    "laptopcomputer",
    "applewatch",
    "mouse",
    "keyboard",
    "ipad.and.trackpad",
    "airpods",
    "bolt.fill",
    "backward.fill",
    "playpause.fill",
    "forward.fill",
    "checkmark.square.fill",
    "square",
    "circle.grid.2x2.fill",
    "xmark",
    "minus",
};

// Paints the item the way the scene graph's painter node would: onto a cleared image.
QImage paintItem(Symbol& item, QSize logical, qreal ratio = 1)
{
    QImage image(logical * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter p(&image);
    item.paint(&p);
    p.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

struct Coverage {
    int opaque = 0;
    int touched = 0;
    int wrongColour = 0;
    QRect bounds;
};

Coverage coverage(const QImage& image, const QColor& tint)
{
    Coverage c;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb px = image.pixel(x, y);
            if (qAlpha(px) == 0)
                continue;
            ++c.touched;
            c.bounds |= QRect(x, y, 1, 1);
            if (qAlpha(px) == 255) {
                ++c.opaque;
                if (QColor(px).rgb() != tint.rgb())
                    ++c.wrongColour;
            }
        }
    }
    return c;
}

const QList<QColor> kTints = {Qt::white, QColor(10, 132, 255), QColor(255, 214, 10), QColor(200, 30, 60)};

} // namespace

TEST(Symbol, EveryNameDrawsInItsTint)
{
    for (int i = 0; i < kNames.size(); ++i) {
        const QString& name = kNames[i];
        const QColor tint = kTints[i % kTints.size()];
        SCOPED_TRACE(name.toStdString());
        ASSERT_TRUE(Symbol::exists(name));

        Symbol item;
        item.setName(name);
        item.setColor(tint);
        item.setPointSize(36);
        item.setSize(QSizeF(64, 64));
        const Coverage c = coverage(paintItem(item, QSize(64, 64)), tint);
        EXPECT_GT(c.opaque, 40);
        EXPECT_EQ(c.wrongColour, 0);
        // Centred, and never past the glyph's own box.
        const QSizeF box = Symbol::glyphSize(name, 36);
        EXPECT_TRUE(
            QRectF(QPointF(32 - box.width() / 2, 32 - box.height() / 2), box).toAlignedRect().contains(c.bounds))
            << c.bounds.x() << "," << c.bounds.y() << " " << c.bounds.width() << "x" << c.bounds.height();
    }
}

TEST(Symbol, UnknownNamesDrawNothing)
{
    for (const QString name : {"", "bogus.symbol", "clock.fill", "../WidgetContainer", "symbols/clock", "CLOCK"}) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_FALSE(Symbol::exists(name));
        EXPECT_TRUE(Symbol::tinted(name, Qt::white, 24).isNull());
        EXPECT_TRUE(Symbol::icon(name, Qt::white, 16).isNull());
        Symbol item;
        item.setName(name);
        item.setSize(QSizeF(32, 32));
        EXPECT_EQ(coverage(paintItem(item, QSize(32, 32)), Qt::white).touched, 0);
    }
}

TEST(Symbol, IsAsLargeAsAGlyphOfItsPointSize)
{
    // The drawn glyph of the places that name a point size: the transport buttons, a ring's icon,
    // a card's icon. Fitted into an N-pixel square instead, the first is 10x6.
    const struct {
        const char* name;
        qreal size;
        QSize ink;
    } cases[] = {
        {"backward.fill", 12, {19, 11}},
        {"playpause.fill", 14, {22, 13}},
        {"laptopcomputer", 14, {19, 13}},
        {"clock", 18, {21, 21}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Symbol item;
        QSignalSpy spy(&item, &Symbol::sizeChanged);
        item.setName(c.name);
        item.setPointSize(c.size);
        EXPECT_EQ(spy.count(), 1);
        // The item's own size is the glyph's box, whatever the drawing in it.
        EXPECT_EQ(QSizeF(item.implicitWidth(), item.implicitHeight()), Symbol::glyphSize(c.name, c.size));
        item.setSize(QSizeF(48, 48));
        const QRect ink = coverage(paintItem(item, QSize(48, 48)), Qt::white).bounds;
        EXPECT_NEAR(ink.width(), c.ink.width(), 1) << ink.width() << "x" << ink.height();
        EXPECT_NEAR(ink.height(), c.ink.height(), 1) << ink.width() << "x" << ink.height();
    }
}

TEST(Symbol, ChangesRepaintWithTheNewValue)
{
    Symbol item;
    item.setName("square");
    item.setPointSize(20);
    item.setSize(QSizeF(24, 24));
    QSignalSpy names(&item, &Symbol::nameChanged);
    QSignalSpy colours(&item, &Symbol::colorChanged);
    const QImage first = paintItem(item, QSize(24, 24));
    EXPECT_EQ(coverage(first, Qt::white).wrongColour, 0);

    // A stale cache would keep the first colour or glyph.
    item.setColor(Qt::red);
    const Coverage red = coverage(paintItem(item, QSize(24, 24)), Qt::red);
    EXPECT_GT(red.opaque, 0);
    EXPECT_EQ(red.wrongColour, 0);

    item.setName("circle.grid.2x2.fill");
    const QImage grid = paintItem(item, QSize(24, 24));
    EXPECT_GT(coverage(grid, Qt::red).opaque, coverage(first, Qt::white).opaque);

    item.setPointSize(8);
    EXPECT_LT(coverage(paintItem(item, QSize(24, 24)), Qt::red).bounds.width(), 10);
    EXPECT_EQ(names.count(), 1);
    EXPECT_EQ(colours.count(), 1);
}

TEST(Symbol, DrawsSharplyAtDoubleDensity)
{
    for (const QString name : {"clock", "keyboard", "checkmark.square.fill"}) {
        SCOPED_TRACE(name.toStdString());
        Symbol item;
        item.setName(name);
        item.setPointSize(24);
        item.setSize(QSizeF(24, 24));
        const QImage doubled = paintItem(item, QSize(24, 24), 2);
        item.setPointSize(48);
        item.setSize(QSizeF(48, 48));
        const QImage reference = paintItem(item, QSize(48, 48));
        // An upscaled 24 px bitmap would soften every edge of the 48 px rendering.
        int differing = 0;
        for (int y = 0; y < 48; ++y)
            for (int x = 0; x < 48; ++x)
                differing += qAbs(qAlpha(doubled.pixel(x, y)) - qAlpha(reference.pixel(x, y))) > 8;
        EXPECT_EQ(differing, 0);
    }
}

TEST(Symbol, IconCarriesTheTintedGlyph)
{
    for (const int px : {16, 22, 32}) {
        SCOPED_TRACE(px);
        const QIcon icon = Symbol::icon("circle.grid.2x2.fill", QColor(0, 200, 0), px);
        ASSERT_FALSE(icon.isNull());
        const QImage image = icon.pixmap(px).toImage().convertToFormat(QImage::Format_ARGB32);
        EXPECT_EQ(image.size(), QSize(px, px));
        const Coverage c = coverage(image, QColor(0, 200, 0));
        EXPECT_GT(c.opaque, px * px / 6);
        EXPECT_EQ(c.wrongColour, 0);
    }
}

TEST(Symbol, GlyphsAreAllDifferent)
{
    QSet<QByteArray> seen;
    for (const QString& name : kNames) {
        const QImage image = Symbol::tinted(name, Qt::white, 24);
        seen.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(seen.size(), kNames.size());
}

TEST(Symbol, IsAnElementOfTheViewsModule)
{
    QQmlEngine engine;
    engine.addImportPath("qrc:/");
    QQmlComponent component(&engine);
    component.setData("import QtQuick\nimport Ombrix.WidgetViews\nSymbol { name: \"bolt.fill\"; size: 14; "
                      "color: \"#ffd60a\" }",
                      QUrl());
    std::unique_ptr<QObject> object(component.create());
    ASSERT_TRUE(object) << component.errorString().toStdString();
    const auto* symbol = qobject_cast<Symbol*>(object.get());
    ASSERT_TRUE(symbol);
    EXPECT_EQ(symbol->name(), "bolt.fill");
    EXPECT_EQ(symbol->color(), QColor(255, 214, 10));
    EXPECT_EQ(QSizeF(symbol->implicitWidth(), symbol->implicitHeight()), Symbol::glyphSize("bolt.fill", 14));
}

// Every glyph white on a dark ground with its name, kept as an artefact to look at.
TEST(Symbol, ContactSheet)
{
    const QString dir = qEnvironmentVariable("OMBRIX_BUILD_DIR", QDir::tempPath()) + "/artifacts";
    ASSERT_TRUE(QDir().mkpath(dir));
    const int cell = 120, glyph = 48, columns = 5;
    const int rows = (kNames.size() + columns - 1) / columns;
    QImage sheet(columns * cell, rows * cell, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(QColor(28, 28, 32));
    QPainter p(&sheet);
    QFont font = p.font();
    font.setPixelSize(11);
    p.setFont(font);
    for (int i = 0; i < kNames.size(); ++i) {
        const QRect box((i % columns) * cell, (i / columns) * cell, cell, cell);
        Symbol item;
        item.setName(kNames[i]);
        item.setPointSize(glyph / Symbol::emPerGrid);
        item.setSize(QSizeF(glyph, glyph));
        p.save();
        p.translate(box.x() + (cell - glyph) / 2, box.y() + 20);
        item.paint(&p);
        p.restore();
        p.setPen(QColor(200, 200, 205));
        p.drawText(box.adjusted(2, 0, -2, -12), Qt::AlignHCenter | Qt::AlignBottom, kNames[i]);
    }
    p.end();
    EXPECT_TRUE(sheet.save(dir + "/symbols.png"));
}
