#include "theme.h"

#include <QtGui/QPalette>
#include <QtWidgets/QApplication>

namespace pylon::viewer::theme {

void apply() {
    QPalette palette(text, caption, caption.lighter(130), tile, window, text, text, tile, window);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, text);
    palette.setColor(QPalette::ToolTipBase, caption);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, dimText);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, dimText);
    palette.setColor(QPalette::Disabled, QPalette::Text, dimText);
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setPalette(palette);
}

}  // namespace pylon::viewer::theme
