#pragma once

#include <string>

#include <QString>

class QFont;
class QWidget;

/// The text font of all our windows: Tahoma or the nearest font at 11 pixels, which is 8.25 point at 96 dots per inch.
[[nodiscard]] QFont WindowFont();

/// Narrows, then shrinks the font of a label, button, check box or radio button until its caption fits the widget's
/// size. Call it when size and caption stand. Other widgets are left alone.
void FitCaption(QWidget* widget);

/// A text for a row of a list, from UTF-8. The end of one that is much too long to be seen is left out: laying out a
/// name of many megabytes, which a file can hold, would stop the window for minutes.
[[nodiscard]] QString RowText(const std::string& text);
