#include <QtTest>
#include <cmath>
#include <cstring>
#include <functional>

#include "FFmpegConverter.h"
#include "PictureFormat.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

/// FFmpeg's frames as the host's pictures: every sample at its depth, every colour where it was.
class tst_FFmpegConverter : public QObject
{
    Q_OBJECT

private slots:
    void wordFormatsKeepTheirSamples();
    void videoColoursFollowTheirMatrix_data();
    void videoColoursFollowTheirMatrix();
    void deepVideoStaysDeep();
};

static int const kWidth = 19; // no multiple of anything, so that rows have gaps
static int const kHeight = 5;

/// A frame of zeros; null without memory.
static FramePtr fx_Frame(AVPixelFormat format, int width, int height)
{
    FramePtr frame(av_frame_alloc());
    frame->width = width;
    frame->height = height;
    frame->format = format;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return nullptr;
    for (AVBufferRef const* buffer : frame->buf) {
        if (buffer)
            memset(buffer->data, 0, size_t(buffer->size));
    }
    return frame;
}

/// Sets every sample of a component of YUV to \p value, a function of its column and row.
static void fx_FillPlane(AVFrame& frame, int component, std::function<int(int, int)> const& value)
{
    // FFmpeg's function adds to what is there, which is zero.
    AVPixFmtDescriptor const& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    int const width = component == 0 ? frame.width : frame.width >> format.log2_chroma_w;
    int const height = component == 0 ? frame.height : frame.height >> format.log2_chroma_h;
    std::vector<quint16> row(static_cast<size_t>(width));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            row[static_cast<size_t>(x)] = static_cast<quint16>(value(x, y));
        av_write_image_line(row.data(), frame.data, frame.linesize, &format, 0, y, component, width);
    }
}

/// A picture's samples, row after row.
static QVector<quint16> fx_SamplesOf(SxPicBuf const& picture)
{
    QVector<quint16> samples;
    for (quint32 y = 0; y < picture.height; ++y) {
        auto const* const row = reinterpret_cast<quint16 const*>(picture.data + size_t{y} * picture.pitch);
        for (quint32 i = 0; i < picture.width * picture.components; ++i)
            samples += row[i];
    }
    return samples;
}

/// Every format of FFmpeg's that is copied as words, against FFmpeg's own way to read a sample.
void tst_FFmpegConverter::wordFormatsKeepTheirSamples()
{
    unsigned const odd = AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_HWACCEL |
                         AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT;
    int formats = 0;
    for (AVPixFmtDescriptor const* format = av_pix_fmt_desc_next(nullptr); format != nullptr;
         format = av_pix_fmt_desc_next(format)) {
        bool const isGrey = format->nb_components <= 2;
        bool const isColour = (format->flags & AV_PIX_FMT_FLAG_RGB) != 0;
        if ((!isGrey && !isColour) || (format->flags & odd) != 0 || format->comp[0].depth < 9 ||
            format->comp[0].depth > 16)
            continue;
        FramePtr const frame = fx_Frame(av_pix_fmt_desc_get_id(format), kWidth, kHeight);
        QVERIFY(frame);
        for (AVBufferRef const* buffer : frame->buf) {
            for (size_t i = 0; buffer != nullptr && i < buffer->size; ++i)
                buffer->data[i] = static_cast<uint8_t>(i * 197 + i / 251);
        }
        CxOwnedPicture picture;
        QVERIFY2(CxFFmpegConverter().convert(*frame, picture.get()), format->name);

        QVector<quint16> expected(static_cast<int>(picture.get().components) * kWidth * kHeight);
        std::vector<quint16> row(size_t{kWidth});
        uint8_t const* planes[4] = {frame->data[0], frame->data[1], frame->data[2], frame->data[3]};
        int const components = static_cast<int>(picture.get().components);
        for (int y = 0; y < kHeight; ++y) {
            for (int c = 0; c < components; ++c) {
                int const component = components == 1 ? 0 : c == 3 ? 3 : 2 - c;
                av_read_image_line2(row.data(), planes, frame->linesize, format, 0, y, component, kWidth, 0,
                                    2);
                for (int x = 0; x < kWidth; ++x)
                    expected[(y * kWidth + x) * components + c] = row[static_cast<size_t>(x)];
            }
        }
        QVERIFY2(fx_SamplesOf(picture.get()) == expected, format->name);
        ++formats;
    }
    QVERIFY(formats >= 20);
}

void tst_FFmpegConverter::videoColoursFollowTheirMatrix_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<QVector<int>>("yuv");
    QTest::addColumn<QVector<int>>("bgr");
    // Limited range; ITU-R BT.601 in small pictures, BT.709 from high definition on.
    QTest::newRow("black") << 64 << 48 << QVector<int>{16, 128, 128} << QVector<int>{0, 0, 0};
    QTest::newRow("white") << 64 << 48 << QVector<int>{235, 128, 128} << QVector<int>{255, 255, 255};
    QTest::newRow("red, 601") << 64 << 48 << QVector<int>{81, 90, 240} << QVector<int>{0, 0, 254};
    QTest::newRow("red, 709") << 1280 << 720 << QVector<int>{63, 102, 240} << QVector<int>{0, 1, 255};
    QTest::newRow("blue, 709") << 1280 << 720 << QVector<int>{32, 240, 118} << QVector<int>{255, 0, 0};
}

void tst_FFmpegConverter::videoColoursFollowTheirMatrix()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(QVector<int>, yuv);
    QFETCH(QVector<int>, bgr);
    FramePtr const frame = fx_Frame(AV_PIX_FMT_YUV420P, width, height);
    QVERIFY(frame);
    for (int plane = 0; plane < 3; ++plane)
        fx_FillPlane(*frame, plane, [&](int, int) { return yuv[plane]; });
    CxOwnedPicture picture;
    QVERIFY(CxFFmpegConverter().convert(*frame, picture.get()));
    for (int i = 0; i < 3; ++i)
        QVERIFY2(std::abs(picture.get().data[i] - bgr[i]) <= 3,
                 qPrintable(QString::number(picture.get().data[i])));
}

void tst_FFmpegConverter::deepVideoStaysDeep()
{
    FramePtr const frame = fx_Frame(AV_PIX_FMT_YUV420P10, 64, 48);
    QVERIFY(frame);
    fx_FillPlane(*frame, 0, [](int x, int) { return x < 32 ? 502 : 503; }); // 64 to 940 is black to white
    fx_FillPlane(*frame, 1, [](int, int) { return 512; });
    fx_FillPlane(*frame, 2, [](int, int) { return 512; });
    CxFFmpegConverter converter;
    CxOwnedPicture picture;
    QVERIFY(converter.convert(*frame, picture.get()));
    QVERIFY(fx_IsWordFormat(picture.get()));
    QCOMPARE(picture.get().bitsPerSample, 16U);
    QVERIFY(converter.knowsSignificantBits());
    QVector<quint16> const samples = fx_SamplesOf(picture.get());
    QVERIFY(std::abs(samples[0] - 32768) < 256);
    QVERIFY(samples[40 * 3] > samples[0]); // a step that 8 bits would have lost
}

QTEST_GUILESS_MAIN(tst_FFmpegConverter)
#include "tst_FFmpegConverter.moc"
