#pragma once

#include <QObject>
#include <memory>

#include "VerifyJob.h"

class CxActions;
class CxBrokenList;
class CxMessageBar;
class CxPlayControl;
class CxStatusBar;
class CxVerifyBar;
class QMainWindow;

/// Examines the recording shown while it can be played on, marks what is broken, lists it and says how it
/// went.
class CxVerifyControl : public QObject
{
    Q_OBJECT

public:
    CxVerifyControl(CxActions& actions, CxPlayControl& play, CxMessageBar& messages, CxStatusBar& status,
                    QStringList const& plugins, QMainWindow& window);
    ~CxVerifyControl() override;

    void setProgram(QString const& program) { m_program = program; } ///< by default the running one
    bool isRunning() const { return bool(m_job); }
    void setEnabled(bool isEnabled);

private:
    void start();
    void finish(SxVerifyResult const& result);
    void tell(SxVerifyResult const& result);
    void forget();

    QMainWindow& m_window;
    CxActions& m_actions;
    CxPlayControl& m_play;
    CxMessageBar& m_messages;
    CxVerifyBar* m_bar;
    CxBrokenList* m_list;
    QString m_program;
    QString m_pluginPath;
    QString m_fileName; ///< of the recording examined
    bool m_isEnabled = false;
    std::unique_ptr<CxVerifyJob> m_job; ///< null unless one runs
};
