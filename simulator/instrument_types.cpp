#include "simulator/instrument_types.h"

#include <algorithm>

namespace {

constexpr char allOptions[] = "B15,B17,B23,B24";

constexpr Ranges widest{{0.0, 1e12}, {-200.0, 100.0}, {0.0, 200.0},
                        {0.0, 1e12}, {0.0, 1e12},     {0.0, 1e6}};

constexpr Ranges generator(double lowest, double highest, double weakest, double strongest)
{
    return {{lowest, highest}, {weakest, strongest}, {0.0, 0.0}, {}, {}, {}};
}

constexpr Ranges microwave(double lowest, double highest, double weakest, double strongest)
{
    return {{lowest, highest}, {weakest, strongest}, {0.0, 110.0}, {}, {}, {}};
}

constexpr Ranges analyzer(double highest, double mostAttenuation, double widestFilter)
{
    return {{0.0, highest}, {-130.0, 30.0},      {0.0, mostAttenuation},
            {0.0, highest}, {1.0, widestFilter}, {0.001, 16000.0}};
}

} // namespace

const std::vector<InstrumentType>& generatorTypes()
{
    static const std::vector<InstrumentType> types{
        {"", Dialect::all, widest, allOptions},
        {"RIGL", Dialect::rigl, generator(100e3, 6e9, -120.0, 18.0), "B4,K7"},
        {"LYR", Dialect::lyr, generator(10e3, 2.4e9, -127.0, 13.0), "0"},
        {"ALTAIR", Dialect::altair, generator(10e3, 5.4e9, -137.0, 13.0), "0"},
        {"DENB", Dialect::denb, generator(300e3, 3.3e9, -144.0, 16.0), "B11,B13"},
        {"ORI", Dialect::denb, generator(300e3, 6.4e9, -144.0, 16.0), "B11,B13"},
        {"PHD(A)", Dialect::denb, generator(100e3, 6e9, -145.0, 18.0), "B10,B20"},
        {"PHD(B)", Dialect::phdB, generator(100e3, 3e9, -145.0, 18.0), "B10,B20"},
        {"CYG", Dialect::cyg, generator(9e3, 6e9, -120.0, 18.0), "B10"},
        {"KAU(A)", Dialect::kauA, generator(9e3, 3e9, -120.0, 13.0), "0"},
        {"KAU(B)", Dialect::kauB, generator(9e3, 3e9, -120.0, 13.0), "0"},
    };
    return types;
}

const std::vector<InstrumentType>& microwaveTypes()
{
    static const std::vector<InstrumentType> types{
        {"", Dialect::all, widest, allOptions},
        {"TAU", Dialect::tau, microwave(10e6, 40e9, -20.0, 15.0), "0"},
        {"ZUB", Dialect::zub, microwave(10e6, 60e9, -20.0, 15.0), allOptions},
    };
    return types;
}

const std::vector<InstrumentType>& analyzerTypes()
{
    static const std::vector<InstrumentType> types{
        {"", Dialect::all, widest, allOptions},
        {"ARA", Dialect::all, analyzer(26.5e9, 70.0, 10e6), "B4,K5"},
        {"HYA", Dialect::all, analyzer(8e9, 75.0, 50e6), "B4,K5"},
        {"ANTA", Dialect::all, analyzer(7e9, 70.0, 10e6), "B4"},
        {"MUS", Dialect::all, analyzer(3.5e9, 70.0, 10e6), "0"},
        {"DOR", Dialect::all, analyzer(40e9, 70.0, 10e6), "B4,B9"},
        {"CRU", Dialect::all, analyzer(43e9, 75.0, 50e6), "B4,K5"},
        {"IND", Dialect::all, analyzer(13.6e9, 75.0, 10e6), "B4"},
        {"GRU", Dialect::all, analyzer(6e9, 50.0, 3e6), "0"},
        {"NOR", Dialect::all, analyzer(30e9, 70.0, 10e6), "B9"},
    };
    return types;
}

const InstrumentType* findType(const std::vector<InstrumentType>& types, const QString& name)
{
    const auto found = std::find_if(types.begin(), types.end(), [&name](const InstrumentType& it) {
        return name == QLatin1String(it.name);
    });
    return found == types.end() ? nullptr : &*found;
}

QStringList typeNames(const std::vector<InstrumentType>& types)
{
    QStringList names;
    for (auto type = types.begin() + 1; type != types.end(); ++type) {
        names << QLatin1String(type->name);
    }
    return names;
}
