#pragma once

#include <QLocale>
#include <QStringList>

/// Installs the texts of \p locale for Qt's own dialogs, for this program and for the plug-ins loaded from
/// \p pluginFiles. Those of libtvpX.so are in `translations/tvpX_LOCALE.qm` beside it, the program's in
/// `translations/minihost_LOCALE.qm` beside the program or with its installed data. What is missing stays
/// English. The translators live as long as the application.
void fx_InstallTranslations(QLocale const& locale, QStringList const& pluginFiles);
