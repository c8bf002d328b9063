#include "TextWindow.h"

#include <QtGui/QFontDatabase>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QVBoxLayout>

using namespace Qt::StringLiterals;

TextWindow::TextWindow(const QString &title, const QString &text, QWidget *parent) : QDialog(parent)
{
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    auto *view = new QPlainTextEdit(text);
    view->setObjectName("textWindowText"_L1);
    view->setAccessibleName(title);
    view->setReadOnly(true);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(view);
    layout->addWidget(buttons);
    constexpr int columns = 100;
    constexpr int rows = 40;
    resize(columns * view->fontMetrics().averageCharWidth(), rows * view->fontMetrics().lineSpacing());
}
