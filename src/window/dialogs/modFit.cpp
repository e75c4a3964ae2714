#include "dialogs/modFit.h"

#include <algorithm>

#include <QAbstractButton>
#include <QCheckBox>
#include <QFont>
#include <QFontMetrics>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>

namespace {

constexpr int smallestPixels = 8;
constexpr int narrowestStretch = 80;

QSize RoomOf(const QWidget* widget)
{
    QStyleOptionButton option;
    option.initFrom(widget);
    const QStyle* style = widget->style();
    if (qobject_cast<const QPushButton*>(widget) != nullptr) {
        return style->subElementRect(QStyle::SE_PushButtonContents, &option, widget).size();
    }
    if (qobject_cast<const QCheckBox*>(widget) != nullptr) {
        return style->subElementRect(QStyle::SE_CheckBoxContents, &option, widget).size();
    }
    if (qobject_cast<const QRadioButton*>(widget) != nullptr) {
        return style->subElementRect(QStyle::SE_RadioButtonContents, &option, widget).size();
    }
    if (qobject_cast<const QAbstractButton*>(widget) != nullptr) {
        return widget->contentsRect().size() - QSize(6, 4);
    }
    return widget->contentsRect().size();
}

} // namespace

QFont WindowFont()
{
    QFont font;
    font.setFamilies(
        {QStringLiteral("Tahoma"), QStringLiteral("Liberation Sans"), QStringLiteral("DejaVu Sans"), font.family()});
    font.setPixelSize(11);
    return font;
}

void FitCaption(QWidget* widget)
{
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const auto* label = qobject_cast<const QLabel*>(widget);
    if (button == nullptr && label == nullptr) {
        return;
    }
    const QString text = button != nullptr ? button->text() : label->text();
    const int flags = Qt::TextShowMnemonic | (label != nullptr && label->wordWrap() ? Qt::TextWordWrap : 0);
    const QSize room = RoomOf(widget);
    QFont font = widget->font();
    if (font.pixelSize() < 1) {
        font.setPixelSize(widget->fontInfo().pixelSize());
    }
    const auto fits = [&] {
        const QSize needed = QFontMetrics(font).boundingRect(QRect(QPoint(0, 0), room), flags, text).size();
        return needed.width() <= room.width() && needed.height() <= room.height();
    };
    while (!fits()) {
        const int stretch = font.stretch() == QFont::AnyStretch ? 100 : font.stretch();
        if (stretch > narrowestStretch) {
            font.setStretch(stretch - 4);
        } else if (font.pixelSize() > smallestPixels) {
            font.setPixelSize(font.pixelSize() - 1);
            font.setStretch(100);
        } else {
            break;
        }
    }
    widget->setFont(font);
}

QString RowText(const std::string& text)
{
    constexpr size_t longest = 1000;
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(std::min(text.size(), longest)));
}
