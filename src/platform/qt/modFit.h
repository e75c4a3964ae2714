#pragma once

class QFont;
class QWidget;

/// The text font of all our windows: Tahoma or its nearest kin at 11 pixels, which is 8.25 point at 96 dots per inch.
[[nodiscard]] QFont WindowFont();

/// Narrows, then shrinks the font of a label, button, check box or radio button until its caption fits the widget's size.
/// Call it when size and caption stand. Other widgets are left alone.
void FitCaption(QWidget* widget);
