// The text and binary forms beside the peers' forms of the same data. SMALL is 1.4 million small values in
// nested sections, 45 MB as text; TABLES is what makes real value files large: the same sections with fewer
// small values and a table of numbers in each, 50 MB as text.

#include <benchmark/benchmark.h>

#include <memory>
#include <sstream>
#include <string>

#include <vector>

#if defined(HAVE_QT)
#include <QBuffer>
#include <QDataStream>
#include <QVariant>
#endif
#if defined(HAVE_BOOST)
#include <boost/property_tree/json_parser.hpp>
#endif
#if defined(HAVE_NLOHMANN)
#include <nlohmann/json.hpp>
#endif

#include <zavbase/values/bin_pack.h>
#include <zavbase/values/uval_text.h>
#include <zavbase/values/uval_types.h>
#include <zavbase/values/value_dict.h>

namespace {

enum Kind { SMALL, TABLES };
constexpr int SECTIONS = 2000, GROUPS = 10, TABLE_SIZE = 120;

// The names of a group's values, as an instrument has them: 70, or 35 beside a table.
std::vector<std::string> Names(Kind kind) {
    std::vector<std::string> names;
    for (const char* part :
         {"shutter", "slit", "grating", "lamp", "detector", "stage_x", "stage_y", "pump", "valve", "cell"})
        for (const char* what : {"speed", "position", "limit", "delay_ms", "gain", "name", "comment"})
            names.push_back(std::string(part) + "_" + what);
    if (kind == TABLES) names.resize(35);
    return names;
}

// Calls one of these for every section, value and table of the data.
template <class Open, class Close, class Number, class Real, class Text, class Table>
void Generate(Kind kind, Open open, Close close, Number number, Real real, Text text, Table table) {
    const std::vector<std::string> names = Names(kind);
    unsigned state = 1;
    for (int s = 0; s < SECTIONS; ++s) {
        open("section" + std::to_string(s));
        for (int g = 0; g < GROUPS; ++g) {
            open("group" + std::to_string(g));
            for (size_t v = 0; v < names.size(); ++v) {
                state = state * 1664525 + 1013904223;
                const std::string& key = names[v];
                if (v % 7 < 4)
                    number(key, static_cast<int>(state >> 4) % 2000000 - 1000000);
                else if (v % 7 < 5)
                    real(key, static_cast<double>(state % 1000000) / 64.0);
                else
                    text(key, "a text of some words " + std::to_string(state % 1000));
            }
            if (kind == TABLES) {
                std::vector<double> numbers;
                for (int i = 0; i < TABLE_SIZE; ++i)
                    numbers.push_back((i * i + static_cast<int>(state % 5000)) / 128.0);
                table("response", numbers);
            }
            close();
        }
        close();
    }
}

ZAV_UValDict* MakeZavData(Kind kind) {
    ZAV_UValDict* top = new ZAV_UValDict(16);
    std::vector<ZAV_UValDict*> open(1, top);
    auto add = [&](const std::string& key, ZAV_UValType type) {
        return open.back()->SetEntry(key.c_str(), ZAV_NewUVal(type));
    };
    Generate(
        kind,
        [&](const std::string& key) {
            ZAV_UValDict* dict = new ZAV_UValDict(16);
            open.back()->SetEntry(key.c_str(), dict);
            open.push_back(dict);
        },
        [&] { open.pop_back(); },
        [&](const std::string& key, int n) { add(key, UVAL_LONG)->SetLongValue(n, 0); },
        [&](const std::string& key, double d) { add(key, UVAL_DOUBLE)->SetDoubleValue(d, 0); },
        [&](const std::string& key, const std::string& t) {
            add(key, UVAL_STRING)->SetStrValue(ZAV_String(t.c_str()), 0);
        },
        [&](const std::string& key, const std::vector<double>& t) {
            ZAV_UVal* table =
                open.back()->SetEntry(key.c_str(), ZAV_NewUVal(UVAL_DOUBLE, static_cast<long>(t.size())));
            for (size_t i = 0; i < t.size(); ++i) table->SetDoubleValue(t[i], static_cast<long>(i));
        });
    return top;
}

ZAV_UValDict& ZavData(Kind kind) {
    static ZAV_UValDict* data[] = {MakeZavData(SMALL), MakeZavData(TABLES)};
    return *data[kind];
}

std::string ZavText(Kind kind) {
    std::ostringstream os;
    ZAV_WriteUValTxt(os, &ZavData(kind), 0);
    return os.str();
}

// Each reader is measured on its own text of the same data; the rates are per byte of that text.
void Rate(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
}

void ZavReadText(benchmark::State& state) {
    const std::string text = ZavText(static_cast<Kind>(state.range(0)));
    std::istringstream is(text);
    for (auto _ : state) {
        is.clear();
        is.seekg(0);
        ZAV_UVal* value = nullptr;
        ZAV_ReadUValTxt(is, value);
        state.PauseTiming();
        delete value;
        state.ResumeTiming();
    }
    Rate(state, text.size());
}

void ZavWriteText(benchmark::State& state) {
    ZAV_UValDict& data = ZavData(static_cast<Kind>(state.range(0)));
    size_t size = 0;
    for (auto _ : state) {
        std::ostringstream os;
        ZAV_WriteUValTxt(os, &data, 0);
        size = static_cast<size_t>(os.tellp());
    }
    Rate(state, size);
}

// Both sides put into memory that is there already.
std::vector<unsigned char>& Room() {
    static std::vector<unsigned char> room(size_t{1} << 27);
    return room;
}

std::string Packed() {
    ZAV_BinPackUValDict packer(ZavData(SMALL));
    unsigned char* cursor = Room().data();
    if (packer.Put(&cursor, cursor + Room().size())) return "";
    return std::string(Room().data(), cursor);
}

void ZavWriteBinary(benchmark::State& state) {
    const size_t size = Packed().size();
    for (auto _ : state) {
        ZAV_BinPackUValDict packer(ZavData(SMALL));
        unsigned char* cursor = Room().data();
        if (packer.Put(&cursor, cursor + Room().size())) state.SkipWithError("no room");
    }
    Rate(state, size);
}

void ZavReadBinary(benchmark::State& state) {
    const std::string bytes = Packed();
    for (auto _ : state) {
        auto dict = std::make_unique<ZAV_UValDict>();
        ZAV_BinPackUValDict packer(*dict);
        const unsigned char* cursor = reinterpret_cast<const unsigned char*>(bytes.data());
        if (packer.Get(&cursor, cursor + bytes.size())) state.SkipWithError("not whole");
        state.PauseTiming();
        dict.reset();
        state.ResumeTiming();
    }
    Rate(state, bytes.size());
}

BENCHMARK(ZavReadText)
    ->Name("ReadText/zav/50MB")
    ->ArgName("tables")
    ->Arg(SMALL)
    ->Arg(TABLES)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(ZavWriteText)
    ->Name("WriteText/zav/50MB")
    ->ArgName("tables")
    ->Arg(SMALL)
    ->Arg(TABLES)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(ZavWriteBinary)
    ->Name("WriteBinary/zav/1400000_values")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(ZavReadBinary)->Name("ReadBinary/zav/1400000_values")->Unit(benchmark::kMillisecond)->Iterations(1);

#if defined(HAVE_NLOHMANN)
nlohmann::json* MakeJsonData(Kind kind) {
    nlohmann::json* top = new nlohmann::json(nlohmann::json::object());
    std::vector<nlohmann::json*> open(1, top);
    Generate(
        kind,
        [&](const std::string& key) { open.push_back(&((*open.back())[key] = nlohmann::json::object())); },
        [&] { open.pop_back(); }, [&](const std::string& key, int n) { (*open.back())[key] = n; },
        [&](const std::string& key, double d) { (*open.back())[key] = d; },
        [&](const std::string& key, const std::string& t) { (*open.back())[key] = t; },
        [&](const std::string& key, const std::vector<double>& t) { (*open.back())[key] = t; });
    return top;
}

nlohmann::json& JsonData(Kind kind) {
    static nlohmann::json* data[] = {MakeJsonData(SMALL), MakeJsonData(TABLES)};
    return *data[kind];
}

void JsonReadText(benchmark::State& state) {
    const std::string text = JsonData(static_cast<Kind>(state.range(0))).dump();
    for (auto _ : state) {
        auto json = std::make_unique<nlohmann::json>(nlohmann::json::parse(text));
        state.PauseTiming();
        json.reset();
        state.ResumeTiming();
    }
    Rate(state, text.size());
}

void JsonWriteText(benchmark::State& state) {
    nlohmann::json& data = JsonData(static_cast<Kind>(state.range(0)));
    size_t size = 0;
    for (auto _ : state) {
        std::ostringstream os;
        os << data;
        size = static_cast<size_t>(os.tellp());
    }
    Rate(state, size);
}

BENCHMARK(JsonReadText)
    ->Name("ReadText/nlohmann/50MB")
    ->ArgName("tables")
    ->Arg(SMALL)
    ->Arg(TABLES)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(JsonWriteText)
    ->Name("WriteText/nlohmann/50MB")
    ->ArgName("tables")
    ->Arg(SMALL)
    ->Arg(TABLES)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

#if defined(HAVE_BOOST)
void PropertyTreeReadText(benchmark::State& state) {
    const std::string text = JsonData(static_cast<Kind>(state.range(0))).dump();
    for (auto _ : state) {
        std::istringstream is(text);
        auto tree = std::make_unique<boost::property_tree::ptree>();
        boost::property_tree::read_json(is, *tree);
        state.PauseTiming();
        tree.reset();
        state.ResumeTiming();
    }
    Rate(state, text.size());
}

BENCHMARK(PropertyTreeReadText)
    ->Name("ReadText/boost/50MB")
    ->ArgName("tables")
    ->Arg(SMALL)
    ->Arg(TABLES)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
#endif
#endif

#if defined(HAVE_QT)
QVariantMap& QtData() {
    static QVariantMap* data = [] {
        std::vector<QVariantMap> open(1);
        std::vector<QString> keys;
        Generate(
            SMALL,
            [&](const std::string& key) {
                keys.push_back(QString::fromStdString(key));
                open.emplace_back();
            },
            [&] {
                QVariantMap map = open.back();
                open.pop_back();
                open.back().insert(keys.back(), map);
                keys.pop_back();
            },
            [&](const std::string& key, int n) { open.back().insert(QString::fromStdString(key), n); },
            [&](const std::string& key, double d) { open.back().insert(QString::fromStdString(key), d); },
            [&](const std::string& key, const std::string& t) {
                open.back().insert(QString::fromStdString(key), QString::fromStdString(t));
            },
            [](const std::string&, const std::vector<double>&) {});
        return new QVariantMap(open.back());
    }();
    return *data;
}

QByteArray QtPacked() {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << QtData();
    return bytes;
}

void QtWriteBinary(benchmark::State& state) {
    QByteArray bytes = QtPacked();
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadWrite);
        QDataStream stream(&buffer);
        stream << QtData();
    }
    Rate(state, static_cast<size_t>(bytes.size()));
}

void QtReadBinary(benchmark::State& state) {
    const QByteArray bytes = QtPacked();
    for (auto _ : state) {
        auto map = std::make_unique<QVariantMap>();
        QDataStream stream(bytes);
        stream >> *map;
        state.PauseTiming();
        map.reset();
        state.ResumeTiming();
    }
    Rate(state, static_cast<size_t>(bytes.size()));
}

BENCHMARK(QtWriteBinary)->Name("WriteBinary/qt/1400000_values")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(QtReadBinary)->Name("ReadBinary/qt/1400000_values")->Unit(benchmark::kMillisecond)->Iterations(1);
#endif

} // namespace
