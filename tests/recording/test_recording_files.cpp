// Readers of recordings: what each form says of its samples, and what is refused with which words.
#include "recording/made_recording.h"

#include <QtTest>

namespace {

QByteArray npy(const QByteArray& entries, const QByteArray& data, int version = 1)
{
    QByteArray head = "{" + entries + "}";
    const int before = version == 1 ? 10 : 12;
    head += QByteArray(63 - (before + head.size()) % 64, ' ') + '\n';
    QByteArray bytes = "\x93NUMPY";
    bytes += char(version);
    bytes += '\0';
    if (version == 1) {
        append(bytes, static_cast<quint16>(head.size()));
    } else {
        append(bytes, static_cast<quint32>(head.size()));
    }
    return bytes + head + data;
}

QByteArray npyHead(const QByteArray& descr, const QByteArray& shape,
                   const QByteArray& order = "False")
{
    return "'descr': '" + descr + "', 'fortran_order': " + order + ", 'shape': (" + shape + "), ";
}

QByteArray wav(quint16 channels, quint16 bits, const QByteArray& data, quint32 claimed,
               const QByteArray& before = {}, quint16 format = 1)
{
    QByteArray bytes = "RIFF....WAVE" + before + "fmt ";
    append(bytes, quint32{16});
    append(bytes, format);
    append(bytes, channels);
    append(bytes, quint32{48000});
    append(bytes, quint32{192000});
    append(bytes, quint16{4});
    append(bytes, bits);
    bytes += "data";
    append(bytes, claimed);
    return bytes + data;
}

QByteArray sigmf(const QByteArray& global,
                 const QByteArray& captures = R"([{"core:sample_start":0}])")
{
    return R"({"global":{)" + global + R"(},"captures":)" + captures + R"(,"annotations":[]})";
}

const QByteArray sixteen(64, 'x');

} // namespace

class TestRecordingFiles : public QObject
{
    Q_OBJECT

private slots:
    void eachTypeBecomesSharesOfFullScale();
    void npyTellsTypeAndShape_data();
    void npyTellsTypeAndShape();
    void twoChannelsOfAWavAreIAndQ();
    void thePairOfSaveWaveformIsOneRecording();
    void sigmfTellsTypeRateFrequencyAndPlace();
    void rawFilesCountWholeSamples();
    void defectsAreToldByName_data();
    void defectsAreToldByName();
    void foldersPipesAndMissingFilesAreRefused();

private:
    QString errorOf(const QString& path, const char* type = nullptr) const
    {
        try {
            (void)openRecording(path, type != nullptr ? sampleTypeOf(type) : nullptr);
        } catch (const RecordingError& error) {
            return error.text;
        }
        return "none";
    }

    RecordingFolder folder;
};

void TestRecordingFiles::eachTypeBecomesSharesOfFullScale()
{
    const auto pairsOf = [](const char* type, const QByteArray& raw) {
        const SampleType* const found = sampleTypeOf(type);
        const int count = raw.size() / found->bytes;
        std::vector<double> re(static_cast<std::size_t>(count));
        std::vector<double> im(re.size());
        found->toParts(raw.constData(), count, {re.data(), im.data()});
        std::vector<double> pairs;
        for (std::size_t k = 0; k < re.size(); ++k) {
            pairs.push_back(re[k]);
            pairs.push_back(im[k]);
        }
        return pairs;
    };
    using Pairs = std::vector<double>;
    QCOMPARE(pairsOf("ci8", QByteArray("\x80\x40\x7f\x00", 4)),
             (Pairs{-1.0, 0.5, 127 / 128.0, 0.0}));
    QCOMPARE(pairsOf("ci16", QByteArray("\x00\x80\xff\x7f", 4)), (Pairs{-1.0, 32767 / 32768.0}));
    QCOMPARE(pairsOf("ri16", QByteArray("\x00\x40\x00\xc0", 4)), (Pairs{0.5, 0.0, -0.5, 0.0}));
    QByteArray floats;
    append(floats, 1.5F);
    append(floats, -0.25F);
    QCOMPARE(pairsOf("cf32", floats), (Pairs{1.5, -0.25}));
    QCOMPARE(pairsOf("rf32", floats), (Pairs{1.5, 0.0, -0.25, 0.0}));
    QByteArray doubles;
    append(doubles, 0.1);
    append(doubles, -3.0);
    QCOMPARE(pairsOf("cf64", doubles), (Pairs{0.1, -3.0}));
    QCOMPARE(pairsOf("rf64", doubles), (Pairs{0.1, 0.0, -3.0, 0.0}));
    QVERIFY(sampleTypeOf("cu8") == nullptr);
}

void TestRecordingFiles::npyTellsTypeAndShape_data()
{
    QTest::addColumn<QByteArray>("descr");
    QTest::addColumn<QByteArray>("shape");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("samples");
    const auto row = [](const char* descr, const char* shape, const char* type, int samples) {
        QTest::addRow("%s (%s)", descr, shape)
            << QByteArray(descr) << QByteArray(shape) << QString(type) << samples;
    };
    row("<c8", "8,", "cf32", 8);
    row("<c16", "4,", "cf64", 4);
    row("<f4", "16,", "rf32", 16);
    row("<f8", "8,", "rf64", 8);
    row("<i2", "32,", "ri16", 32);
    row("<f4", "8, 2", "cf32", 8);
    row("<f8", "4, 2", "cf64", 4);
    row("<i2", "16, 2", "ci16", 16);
}

void TestRecordingFiles::npyTellsTypeAndShape()
{
    QFETCH(QByteArray, descr);
    QFETCH(QByteArray, shape);
    QFETCH(QString, type);
    QFETCH(int, samples);
    for (const int version : {1, 2, 3}) {
        const QByteArray bytes = npy(npyHead(descr, shape), sixteen, version);
        const Recording read = openRecording(folder.write("a.npy", bytes), nullptr);
        QCOMPARE(QString(read.type->name), type);
        QCOMPARE(read.samples, qint64{samples});
        QCOMPARE(read.offset, qint64{bytes.size() - sixteen.size()});
        QVERIFY(!read.sampleRate);
    }
}

void TestRecordingFiles::twoChannelsOfAWavAreIAndQ()
{
    const QByteArray other("LIST\x03\x00\x00\x00"
                           "abc\x00",
                           12); // of an odd size, padded
    const QByteArray bytes = wav(2, 16, sixteen, 64, other);
    const Recording read = openRecording(folder.write("a.WAV", bytes), nullptr);
    QCOMPARE(QString(read.type->name), QString("ci16"));
    QCOMPARE(read.samples, qint64{16});
    QCOMPARE(*read.sampleRate, 48000.0);
    QCOMPARE(read.offset, qint64{bytes.size() - 64});
    // Written as it came, so that its size wasn't known.
    const QString endless = folder.write("b.wav", wav(2, 16, sixteen, 0xFFFFFFFF));
    QCOMPARE(openRecording(endless, nullptr).samples, qint64{16});
}

void TestRecordingFiles::thePairOfSaveWaveformIsOneRecording()
{
    QByteArray i;
    QByteArray q;
    for (qint16 k = 0; k < 8; ++k) {
        append(i, k);
        append(q, static_cast<qint16>(-k));
    }
    folder.write("a.i.wav", wav(1, 16, i, 64)); // the head claims four times the data
    const QString path = folder.write("a.q.wav", wav(1, 16, q, 64));
    const SampleReader reader(openRecording(path, nullptr));
    QCOMPARE(reader.recording().samples, qint64{8});
    std::vector<char> raw;
    reader.read(3, 2, raw);
    QCOMPARE(QByteArray(raw.data(), int(raw.size())).toHex(), QByteArray("0300fdff0400fcff"));
    folder.write("a.q.wav", wav(1, 16, q + "zz", 64));
    QVERIFY(errorOf(path).contains("differ"));
    QFile::remove(path);
    QVERIFY(errorOf(folder.path("a.i.wav")).contains("no such file"));
}

void TestRecordingFiles::sigmfTellsTypeRateFrequencyAndPlace()
{
    folder.write("a.sigmf-data", sixteen);
    const QString meta = folder.write(
        "a.sigmf-meta",
        sigmf(
            R"("core:datatype":"ci16_le","core:sample_rate":2e6,"core:sha512":"ABCD","core:offset":100)",
            R"([{"core:sample_start":102,"core:header_bytes":8,"core:frequency":1.5e9},
                  {"core:sample_start":109}])"));
    for (const QString& name : {meta, folder.path("a.sigmf-data")}) {
        const Recording read = openRecording(name, nullptr);
        QCOMPARE(QString(read.type->name), QString("ci16"));
        QCOMPARE(*read.sampleRate, 2e6);
        QCOMPARE(*read.frequency, 1.5e9);
        QCOMPARE(read.sha512, QByteArray("abcd"));
        QCOMPARE(read.offset, qint64{8 + 8});
        QCOMPARE(read.samples, qint64{7}); // up to the second capture
        QCOMPARE(read.remarks.size(), 1);
    }
    const QString other = folder.write(
        "b.sigmf-meta",
        sigmf(R"("core:datatype":"ci8","core:dataset":"a.sigmf-data","core:trailing_bytes":4)"));
    QCOMPARE(openRecording(other, nullptr).samples, qint64{30});
}

void TestRecordingFiles::rawFilesCountWholeSamples()
{
    const QString path = folder.write("a.bin", sixteen + "cut");
    QCOMPARE(openRecording(path, sampleTypeOf("cf32")).samples, qint64{8});
    QCOMPARE(openRecording(folder.write("a.ci16", sixteen), nullptr).samples, qint64{16});
    QVERIFY(errorOf(path).contains("--type"));
}

void TestRecordingFiles::defectsAreToldByName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("words");
    const auto row = [](const char* title, const char* name, const QByteArray& bytes,
                        const char* words) {
        QTest::newRow(title) << QString(name) << bytes << QString(words);
    };
    row("npy: empty", "d.npy", {}, "no NumPy array");
    row("npy: rubbish", "d.npy", sixteen, "no NumPy array");
    row("npy: version 4", "d.npy", npy(npyHead("<c8", "8,"), sixteen, 4), "version 4");
    row("npy: version 255", "d.npy", npy(npyHead("<c8", "8,"), sixteen, 255), "version 255 of");
    row("npy: cut in its head", "d.npy", npy(npyHead("<c8", "8,"), {}).left(40),
        "ends in its head");
    row("npy: huge head", "d.npy", QByteArray("\x93NUMPY\x02\x00\xff\xff\xff\x7f", 12), "claims");
    row("npy: big-endian", "d.npy", npy(npyHead(">c8", "8,"), sixteen), "big-endian");
    row("npy: unknown type", "d.npy", npy(npyHead("<u4", "16,"), sixteen), "<u4");
    row("npy: structured", "d.npy",
        npy("'descr': [('i', '<f4')], 'fortran_order': False, 'shape': (8,), ", sixteen), "descr");
    row("npy: columns", "d.npy", npy(npyHead("<f4", "8, 2", "True"), sixteen), "Fortran");
    row("npy: complex in columns", "d.npy", npy(npyHead("<c8", "4, 2"), sixteen), "two columns");
    row("npy: three dimensions", "d.npy", npy(npyHead("<f4", "2, 2, 4"), sixteen), "shape");
    row("npy: no dimension", "d.npy", npy(npyHead("<f4", ""), sixteen), "shape");
    row("npy: negative", "d.npy", npy(npyHead("<f4", "-16,"), sixteen), "shape");
    row("npy: claims 2^40", "d.npy", npy(npyHead("<c8", "1099511627776,"), sixteen),
        "claims 1099511627776 samples and has 8");
    row("npy: claims 2^63", "d.npy", npy(npyHead("<c8", "9223372036854775808,"), sixteen), "shape");
    row("npy: no sample", "d.npy", npy(npyHead("<c8", "0,"), {}), "no sample");
    row("wav: rubbish", "d.wav", sixteen, "no waveform audio");
    row("wav: no data", "d.wav", wav(2, 16, {}, 0).left(36), "no \"data\"");
    row("wav: 24 bits", "d.wav", wav(2, 24, sixteen, 64), "24 bits");
    row("wav: one channel", "d.wav", wav(1, 16, sixteen, 64), "1 channels");
    row("wav: floating point", "d.wav", wav(2, 16, sixteen, 64, {}, 3), "format 3");
    row("wav: cut short", "d.wav", wav(2, 16, sixteen, 80), "cut short");
    row("wav: empty", "d.wav", wav(2, 16, {}, 0), "no sample");
    row("wav: endless chunk", "d.wav", QByteArray("RIFF....WAVEjunk\xff\xff\xff\xff", 20), "data");
    row("sigmf: rubbish", "d.sigmf-meta", sixteen, "no JSON");
    row("sigmf: a list", "d.sigmf-meta", "[]", "no JSON");
    row("sigmf: big-endian", "d.sigmf-meta", sigmf(R"("core:datatype":"cf32_be")"), "big-endian");
    row("sigmf: no order", "d.sigmf-meta", sigmf(R"("core:datatype":"cf32")"), "cf32");
    row("sigmf: unknown type", "d.sigmf-meta", sigmf(R"("core:datatype":"cu8")"), "cu8");
    row("sigmf: no type", "d.sigmf-meta", sigmf(""), "core:datatype");
    row("sigmf: two channels", "d.sigmf-meta",
        sigmf(R"("core:datatype":"ci8","core:num_channels":2)"), "channels");
    row("sigmf: begins behind its end", "d.sigmf-meta",
        sigmf(R"("core:datatype":"ci8")", R"([{"core:sample_start":9e15}])"), "ends before");
    row("sigmf: begins before its begin", "d.sigmf-meta",
        sigmf(R"("core:datatype":"ci8","core:offset":5)", R"([{"core:sample_start":2}])"),
        "before");
    row("sigmf: no count", "d.sigmf-meta",
        sigmf(R"("core:datatype":"ci8")", R"([{"core:sample_start":-1}])"), "no count");
    row("sigmf: leads elsewhere", "d.sigmf-meta",
        sigmf(R"("core:datatype":"ci8","core:dataset":"../d")"), "beside");
    row("sigmf: no data", "e.sigmf-meta", sigmf(R"("core:datatype":"ci8")"), "missing");
    row("raw: empty", "d.cf32", {}, "no sample");
    row("raw: less than a sample", "d.cf32", "1234567", "no sample");
}

void TestRecordingFiles::defectsAreToldByName()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, words);
    folder.write("d.sigmf-data", sixteen);
    const QString error = errorOf(folder.write(name, bytes));
    QVERIFY2(error.contains(words), qPrintable(error));
    QVERIFY2(error.contains(name.left(2)), qPrintable(error));
    QVERIFY(!error.contains('\n'));
}

void TestRecordingFiles::foldersPipesAndMissingFilesAreRefused()
{
    QVERIFY(errorOf(folder.path("."), "cf32").contains("folder"));
    QVERIFY(errorOf(folder.path("nothing.npy")).contains("no such file"));
    QVERIFY(errorOf("/dev/zero", "cf32").contains("no regular file"));
}

QTEST_APPLESS_MAIN(TestRecordingFiles)
#include "test_recording_files.moc"
