#include "HelpWindow.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QVBoxLayout>

#include "Actions.h"
#include "CxPlugin.h"
#include "LicenceNotice.h"
#include "PluginHost.h"

static void fx_AddRow(QTableWidget* table, QString const& what, QString const& how)
{
    int const row = table->rowCount();
    table->insertRow(row);
    table->setItem(row, 0, new QTableWidgetItem(what));
    table->setItem(row, 1, new QTableWidgetItem(how));
}

static void fx_AddCloseButton(QDialog* window, QVBoxLayout* column)
{
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, window);
    QObject::connect(buttons, &QDialogButtonBox::rejected, window, &QDialog::reject);
    column->addWidget(buttons);
}

CxHelpWindow::CxHelpWindow(CxActions const& actions, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("helpWindow"));
    setWindowTitle(tr("Keys"));
    auto* const table = new QTableWidget(0, 2, this);
    table->setAccessibleName(tr("Keys"));
    table->horizontalHeader()->hide();
    table->verticalHeader()->hide();
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);

    for (QAction const* const action :
         actions.findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (action->shortcut().isEmpty())
            continue;
        QStringList keys;
        for (QKeySequence const& key : action->shortcuts())
            keys.append(key.toString(QKeySequence::NativeText));
        fx_AddRow(table, QString(action->text()).remove(QLatin1Char('&')), keys.join(tr(" or ")));
    }
    fx_AddRow(table, tr("Leave full screen"),
              QKeySequence(Qt::Key_Escape).toString(QKeySequence::NativeText));
    fx_AddRow(table, tr("Move an enlarged picture"), tr("Alt+arrow keys, or drag it"));
    fx_AddRow(table, tr("Zoom around the mouse"), tr("Mouse wheel"));
    fx_AddRow(table, tr("Zoom the bytes of each picture"),
              tr("Mouse wheel, or up and down arrow keys there"));
    fx_AddRow(table, tr("Full screen"), tr("Double click"));
    table->resizeColumnsToContents();
    table->horizontalHeader()->setStretchLastSection(true);

    auto* const column = new QVBoxLayout(this);
    column->addWidget(table);
    fx_AddCloseButton(this, column);
    resize(table->columnWidth(0) + table->columnWidth(1) + 80, table->rowHeight(0) * 20);
}

static QString fx_AboutText(CxPluginHost const& plugins)
{
    QString text = QStringLiteral("minihost %1\n").arg(QApplication::applicationVersion());
    for (CxPlugin* const plugin : plugins.plugins()) {
        text += QStringLiteral("\n%1 %2\n%3\n%4\n\n%5\n\n%6\n")
                    .arg(plugin->name(), plugin->version(), plugin->author(), plugin->website(),
                         plugin->description(), fx_LicenceNotice(*plugin));
    }
    return text;
}

CxAboutWindow::CxAboutWindow(CxPluginHost const& plugins, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("aboutWindow"));
    setWindowTitle(tr("About and Licences"));
    auto* const view = new QPlainTextEdit(fx_AboutText(plugins), this);
    view->setReadOnly(true);
    view->setTabChangesFocus(true);
    view->setAccessibleName(windowTitle());
    auto* const column = new QVBoxLayout(this);
    column->addWidget(view);
    fx_AddCloseButton(this, column);
    resize(fontMetrics().averageCharWidth() * 90, fontMetrics().lineSpacing() * 30);
}
