#pragma once

#include <QTemporaryDir>
#include <QVector>

#include "EncoderOptions.h"
#include "PluginHost.h"
#include "PluginMessages.h"
#include "ShownPicture.h"

/// What a test of the viewer needs: the plug-in (PLUGIN_FILE) loaded, settings of nobody's, and a folder
/// with recordings of the test camera.
class CxViewerFixture
{
public:
    CxViewerFixture();

    QString error; ///< empty when everything is there
    CxPluginHost plugins;

    QString path(QString const& name) const { return m_folder.filePath(name); }

    /// Records \p pictures of the test camera with small pictures. Empty when that failed.
    QString record(QString const& name, int pictures, SxEncoderOptions const& options = {});

    /// Copies \p recording; where slices of the second half stood is then nothing that a decoder knows.
    QString damage(QString const& recording, QString const& name);

    static QImage decoded(QString const& fileName, int number); ///< by a loader of its own
    static QVector<int> keyFrames(QString const& fileName);
    static int pictures(QString const& fileName);
    static int level(QString const& fileName); ///< level_idc of the first sequence parameter set, or -1

private:
    CxPluginMessages m_messages;
    QTemporaryDir m_folder;
    QTemporaryDir m_settings;
};
