// Lines as a person may type them: read, or refused with a sentence.
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QStringList>
#include <cstdint>

#include "Expect.h"
#include "ExportArguments.h"
#include "FrameSelection.h"
#include "FuzzInput.h"
#include "NumberedFileName.h"
#include "RecordArguments.h"
#include "RemuxArguments.h"

static constexpr int kMostFrames = 200; // of the recording

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    new QCoreApplication(*argc, *argv); // for the parser; lives as long as the program
    return 0;
}

static void fx_CheckFrames(QString const& text, int count)
{
    QString error;
    std::optional<CxFrameSelection> const selection = CxFrameSelection::parse(text, error);
    TARN_EXPECT(selection.has_value() == error.isEmpty());
    if (!selection)
        return;
    std::optional<QVector<int>> const frames = selection->frames(count, {0, count / 2}, error);
    TARN_EXPECT(frames.has_value() == error.isEmpty());
    if (!frames)
        return;
    for (int const frame : *frames)
        TARN_EXPECT(frame >= 0 && frame < count);
}

static void fx_CheckFileName(QString const& pattern, int frame)
{
    std::optional<QString> const name = fx_FileNameOf(pattern, frame);
    TARN_EXPECT(name || !fx_HasPlaceForNumber(pattern));
    TARN_EXPECT(!name || name->size() <= pattern.size() * 20 + 20);
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    CxFuzzInput input(data, size);
    std::uint8_t const kind = input.byte() % 5;
    int const number = 1 + static_cast<int>(input.below(kMostFrames));
    QString const text =
        QString::fromUtf8(reinterpret_cast<char const*>(input.data()), static_cast<int>(input.left()));
    QStringList const line = QStringList(QStringLiteral("minihost")) + text.split(QLatin1Char('\n'));
    QString error;
    SxRecordArguments record;
    SxExportArguments exported;
    SxRemuxArguments remuxed;
    switch (kind) {
    case 0:
        fx_CheckFrames(text, number);
        break;
    case 1:
        fx_CheckFileName(text, number);
        break;
    case 2:
        TARN_EXPECT(fx_ParseRecordArguments(line, record, error) == error.isEmpty());
        break;
    case 3:
        TARN_EXPECT(fx_ParseRemuxArguments(line, remuxed, error) == error.isEmpty());
        break;
    default:
        TARN_EXPECT(fx_ParseExportArguments(line, exported, error) == error.isEmpty());
        TARN_EXPECT(!error.isEmpty() || exported.common.run.help || exported.frames);
    }
    return 0;
}
