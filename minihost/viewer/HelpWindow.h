#pragma once

#include <QDialog>

class CxActions;
class CxPluginHost;

/// The list of keys, made from the actions themselves.
class CxHelpWindow : public QDialog
{
    Q_OBJECT

public:
    CxHelpWindow(CxActions const& actions, QWidget* parent);
};

/// Who made what: name, version and licence texts of every plug-in.
class CxAboutWindow : public QDialog
{
    Q_OBJECT

public:
    CxAboutWindow(CxPluginHost const& plugins, QWidget* parent);
};
