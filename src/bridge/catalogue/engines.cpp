// Engine readings. Most stand in two or three places: a 16-bit word of the engine's block, and a double.
#include <numbers>

#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/engine_families.h"

namespace {

constexpr double perPercent = 16384.0 / 100;
constexpr double poundsPerHour = 7936.6;  // of one kg/s: 3600 s x 2.2046 lb
constexpr double poundsPerNewton = 0.224809;
constexpr double poundsPerNewtonProp = 0.225011;  // as clients know the propeller rows
constexpr double psfPerPsi = 144;
constexpr double psfPerInHg = 70.7262;   // pounds per square foot in an inch of mercury
constexpr double egtPerDegree = 19.051;  // about 16384 at 860 deg C
constexpr double footPoundsPerNm = 0.74;
constexpr double nmPerFootPound = 1.35;
constexpr double rankinePerKelvin = 1.8;
constexpr double absoluteZero = 273.15;  // below 0 deg C
constexpr double revolution = 2 * std::numbers::pi;

// --- Speeds and fuel flow -----------------------------------------------------------------------------

constexpr Family running = {
    .shape = {.type = Stored::U16,
              .name = "running_eng",
              .meaning = "engine running",
              .show = Show::Flag,
              .cycle = Cycle::C7,
              .source = IntElement<"sim/flightmodel/engine/ENGN_running">(0),
              .convert = OnOff},
    .offsets = {0x0894, 0x092C, 0x09C4, 0},
};
constexpr Family running4 = {
    .shape = {.type = Stored::U16,
              .name = "running_eng",
              .meaning = "engine running",
              .show = Show::Flag,
              .cycle = Cycle::C13,
              .source = IntElement<"sim/flightmodel/engine/ENGN_running">(0),
              .convert = OnOff},
    .offsets = {0, 0, 0, 0x0A5C},
};

constexpr Family n2Word = {
    .shape = {.type = Stored::U16,
              .name = "n2_word_eng",
              .meaning = "N2",
              .unit = "%",
              .unitScale = 1 / perPercent,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_N2_">(0),
              .factor = perPercent},
    .offsets = {0x0896, 0x092E, 0x09C6, 0x0A5E},
};
constexpr Family n2 = {
    .shape = {.type = Stored::F64,
              .name = "n2_eng",
              .meaning = "N2",
              .unit = "%",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_N2_">(0)},
    .offsets = {0x2008, 0x2108, 0x2208, 0x2308},
};
constexpr Family n2Corrected = {
    .shape = {.type = Stored::F64,
              .name = "n2_corrected_eng",
              .meaning = "corrected N2",
              .unit = "%",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_N2_">(0),
              .note = "same value as N2"},
    .offsets = {0x2018, 0x2118, 0, 0},
};
constexpr Family n1Word = {
    .shape = {.type = Stored::U16,
              .name = "n1_word_eng",
              .meaning = "N1",
              .unit = "%",
              .unitScale = 1 / perPercent,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_N1_">(0),
              .factor = perPercent},
    .offsets = {0x0898, 0x0930, 0x09C8, 0x0A60},
};
constexpr Family n1 = {
    .shape = {.type = Stored::F64,
              .name = "n1_eng",
              .meaning = "N1",
              .unit = "%",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_N1_">(0)},
    .offsets = {0x2000, 0x2100, 0x2200, 0x2300},
};

constexpr Family fuelFlowWord = {
    .shape = {.type = Stored::U16,
              .name = "fuel_flow_word_eng",
              .meaning = "fuel flow",
              .unit = "lb/h",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_FF_">(0),
              .factor = poundsPerHour,
              .note = "whole pounds per hour"},
    .offsets = {0x08A0, 0x0938, 0x09D0, 0x0A68},
};
constexpr Family fuelFlow = {
    .shape = {.type = Stored::F64,
              .name = "fuel_flow_eng",
              .meaning = "fuel flow",
              .unit = "lb/h",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_FF_">(0),
              .factor = poundsPerHour},
    .offsets = {0x0918, 0x09B0, 0x0A48, 0x0AE0},
};
constexpr Family fuelFlowSecond = {
    .shape = {.type = Stored::F64,
              .name = "fuel_flow_turbine_eng",
              .meaning = "fuel flow, turbine block",
              .unit = "lb/h",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_FF_">(0),
              .factor = poundsPerHour},
    .offsets = {0x2060, 0x2160, 0x2260, 0x2360},
};

// --- Oil, pressure ratio, temperatures ----------------------------------------------------------------

constexpr Family oilTemperature = {
    .shape = {.type = Stored::S16,
              .name = "oil_temp_eng",
              .meaning = "oil temperature",
              .unit = "degC",
              .unitScale = 140.0 / 16384,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_oil_temp_c">(0),
              .factor = 16384.0 / 140},
    .offsets = {0x08B8, 0x0950, 0x09E8, 0x0A80},
};
constexpr Family oilPressureWord = {
    .shape = {.type = Stored::U16,
              .name = "oil_pressure_eng",
              .meaning = "oil pressure",
              .unit = "psi",
              .unitScale = 55.0 / 16384,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_oil_press_psi">(0),
              .factor = 16384.0 / 55,
              .note = "ends at 220 psi"},
    .offsets = {0x08BA, 0x0952, 0x09EA, 0x0A82},
};
constexpr Family oilPressure = {
    .shape = {.type = Stored::F64,
              .name = "oil_pressure_psf_eng",
              .meaning = "oil pressure",
              .unit = "psi",
              .unitScale = 1 / psfPerPsi,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_oil_press_psi">(0),
              .factor = psfPerPsi,
              .note = "stored in pounds per square foot"},
    .offsets = {0x3B60, 0x3AA0, 0x39E0, 0x3920},
};
constexpr Family pressureRatioWord = {
    .shape = {.type = Stored::U16,
              .name = "epr_word_eng",
              .meaning = "engine pressure ratio",
              .unitScale = 1.6 / 16384,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_EPR">(0),
              .factor = 16384 / 1.6},
    .offsets = {0x08BC, 0x0954, 0x09EC, 0x0A84},
};
constexpr Family pressureRatio = {
    .shape = {.type = Stored::F64,
              .name = "epr_eng",
              .meaning = "engine pressure ratio",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_EPR">(0)},
    .offsets = {0x2030, 0x2130, 0, 0},
};

// The same temperatures in the two forms that clients know.
constexpr EngineVariants exhaustVariants = {
    variantsOf<[] {
      return std::array{Variant{.addOn = AddOn::B738Extended, .source = Float<"laminar/B738/engine/eng1_egt">},
                        Variant{.source = FloatElement<"sim/flightmodel/engine/ENGN_EGT_c">(0)}};
    }>,
    variantsOf<[] {
      return std::array{Variant{.addOn = AddOn::B738Extended, .source = Float<"laminar/B738/engine/eng2_egt">},
                        Variant{.source = FloatElement<"sim/flightmodel/engine/ENGN_EGT_c">(1)}};
    }>,
    variantsOf<[] {
      return std::array{Variant{.source = FloatElement<"sim/flightmodel/engine/ENGN_EGT_c">(2)}};
    }>,
    variantsOf<[] {
      return std::array{Variant{.source = FloatElement<"sim/flightmodel/engine/ENGN_EGT_c">(3)}};
    }>};

double ExhaustRankine(double celsius) { return (celsius + absoluteZero) * rankinePerKelvin; }

constexpr Family exhaustWord = {
    .shape = {.type = Stored::S16,
              .name = "egt_eng",
              .meaning = "exhaust gas temperature",
              .unit = "degC",
              .unitScale = 1 / egtPerDegree,
              .cycle = Cycle::C1,
              .factor = egtPerDegree},
    .offsets = {0x08BE, 0x0956, 0x09EE, 0x0A86},
    .variants = exhaustVariants,
};
constexpr Family exhaust = {
    .shape = {.type = Stored::F64,
              .name = "egt_rankine_eng",
              .meaning = "exhaust gas temperature",
              .unit = "degC",
              .unitScale = 1 / rankinePerKelvin,
              .unitBias = -absoluteZero,
              .cycle = Cycle::C1,
              .convert = ExhaustRankine,
              .note = "stored in degrees Rankine"},
    .offsets = {0x3B70, 0x3AB0, 0, 0},
    .variants = exhaustVariants,
};
constexpr Family turbineTemperature = {
    .shape = {.type = Stored::F64,
              .name = "itt_eng",
              .meaning = "inter-turbine temperature",
              .unit = "degC",
              .unitScale = 1 / rankinePerKelvin,
              .unitBias = -absoluteZero,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_ITT_c">(0),
              .factor = rankinePerKelvin,
              .add = 491.67,
              .note = "stored in degrees Rankine"},
    .offsets = {0x2038, 0x2138, 0, 0},
};
constexpr Family manifoldWord = {
    .shape = {.type = Stored::U16,
              .name = "manifold_eng",
              .meaning = "manifold pressure",
              .unit = "inHg",
              .unitScale = 1.0 / 1024,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/cockpit2/engine/indicators/MPR_in_hg">(0),
              .factor = 1024},
    .offsets = {0x08C0, 0x0958, 0x09F0, 0x0A88},
};
constexpr Family manifold = {
    .shape = {.type = Stored::F64,
              .name = "manifold_psf_eng",
              .meaning = "manifold pressure",
              .unit = "inHg",
              .unitScale = 1 / psfPerInHg,
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/cockpit2/engine/indicators/MPR_in_hg">(0),
              .factor = psfPerInHg,
              .note = "stored in pounds per square foot"},
    .offsets = {0x37E8, 0x3728, 0, 0},
};
constexpr Family oilQuantity = {
    .shape = {.type = Stored::S32,
              .name = "oil_quantity_eng",
              .meaning = "oil quantity",
              .unit = "%",
              .unitScale = 100.0 / 16384,
              .cycle = Cycle::C313,
              .source = FloatElement<"sim/cockpit2/engine/indicators/oil_quantity_ratio">(0),
              .factor = 16384},
    .offsets = {0x08D0, 0x0968, 0x0A00, 0x0A98},
};

// --- Vibration and hydraulics -------------------------------------------------------------------------

constexpr Family vibration = {
    .shape = {.type = Stored::S32,
              .name = "vibration_eng",
              .meaning = "engine vibration",
              .unitScale = 17.25 / 10000,
              .cycle = Cycle::C1,
              .factor = 10000 / 17.25,
              .note = "x737 only, else 0"},
    .offsets = {0x08D4, 0x096C, 0, 0},
    .variants = {variantsOf<[] {
                   return std::array{Variant{.addOn = AddOn::X737, .source = Float<"x737/engine/viblevel_1">}};
                 }>,
                 variantsOf<[] {
                   return std::array{Variant{.addOn = AddOn::X737, .source = Float<"x737/engine/viblevel_2">}};
                 }>},
};

// The one hydraulic system serves all engines. The unit of its pressure is the aircraft author's choice: a
// share of 3000 psi, or psi. 4 x psi.
double HydraulicPressure(double published) {
  constexpr double highestShare = 2, fullPressure = 3000;
  return published * 4 * (published > highestShare ? 1 : fullPressure);
}
constexpr OffsetRow hydraulicPressureShape = {
    .type = Stored::S32,
    .name = "hyd_pressure_eng",
    .meaning = "hydraulic pressure",
    .unit = "psi",
    .unitScale = 0.25,
    .cycle = Cycle::C13,
    .source = Float<"sim/cockpit2/hydraulics/indicators/hydraulic_pressure_1">,
    .convert = HydraulicPressure,
    .note = "an aircraft gives psi or a share of 3000 psi; up to 2 counts as a share"};
constexpr OffsetRow EveryFrame(OffsetRow shape) {
  shape.cycle = Cycle::C1;
  return shape;
}
constexpr Family hydraulicPressure = {.shape = hydraulicPressureShape, .offsets = {0x08D8, 0x0970, 0, 0}};
constexpr Family hydraulicPressureRear = {.shape = EveryFrame(hydraulicPressureShape),
                                          .offsets = {0, 0, 0x0A08, 0x0AA0}};
constexpr Family hydraulicQuantity = {
    .shape = {.type = Stored::S32,
              .name = "hyd_quantity_eng",
              .meaning = "hydraulic quantity",
              .unit = "%",
              .unitScale = 100.0 / 16384,
              .cycle = Cycle::C313,
              .source = Float<"sim/cockpit/misc/hydraulic_quantity">,
              .factor = 16384},
    .offsets = {0x08DC, 0x0974, 0x0A0C, 0x0AA4},
};

// --- Torque, thrust, propellers -----------------------------------------------------------------------

// Shares of the limits, of engines 1 and 2; 0 when the aircraft has no limit.
constexpr Source propRpm = FloatElement<"sim/cockpit2/engine/indicators/prop_speed_rpm">(1);
double torqueShares[engineCount], propSpeedShares[engineCount];

void TakeShares() {
  const double torqueLimit = ReadSource(Float<"sim/aircraft/limits/red_hi_TRQ">) * nmPerFootPound;
  const double redline = ReadSource(Float<"sim/aircraft/engine/acf_RSC_redline_eng">);  // rad/s
  for (int engine = 0; engine < 2; engine++) {
    const double torque = ReadSource(FloatElement<"sim/flightmodel/engine/ENGN_TRQ">(engine));
    // Before 9.55 only in radians a second.
    const double speed =
        HandleOf(propRpm) != nullptr
            ? ReadSource(FloatElement<"sim/cockpit2/engine/indicators/prop_speed_rpm">(engine)) * revolution /
                  60
            : ReadSource(FloatElement<"sim/flightmodel/engine/POINT_tacrad">(engine));
    torqueShares[engine] = torqueLimit == 0 ? 0 : torque / torqueLimit;
    propSpeedShares[engine] = redline == 0 ? 0 : speed / redline;
  }
}

constexpr Family torque = {
    .shape = {.type = Stored::S32,
              .name = "torque_eng",
              .meaning = "torque",
              .unit = "lb ft",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/ENGN_TRQ">(0),
              .factor = footPoundsPerNm},
    .offsets = {0x0920, 0x09B8, 0x0A50, 0x0AE8},
};
constexpr Family torqueRatio = {
    .shape = {.type = Stored::F64,
              .name = "torque_ratio_eng",
              .meaning = "torque as a share of the limit",
              .unit = "%",
              .unitScale = 100,
              .cycle = Cycle::C1,
              .prepared = torqueShares,
              .inputs = sourcesOf<Float<"sim/aircraft/limits/red_hi_TRQ">>,
              .prepare = TakeShares,
              .note = "0 when the aircraft has no limit"},
    .offsets = {0x2028, 0x2128, 0, 0},
};
constexpr Family thrust = {
    .shape = {.type = Stored::F64,
              .name = "thrust_eng",
              .meaning = "jet thrust",
              .unit = "lbf",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/POINT_thrust">(0),
              .factor = poundsPerNewton},
    .offsets = {0x204C, 0x214C, 0x224C, 0x234C},
};
constexpr Family propThrust = {
    .shape = {.type = Stored::F64,
              .name = "thrust_prop",
              .meaning = "propeller thrust",
              .unit = "lbf",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/POINT_thrust">(0),
              .factor = poundsPerNewtonProp},
    .offsets = {0x2410, 0x2510, 0, 0},
};
constexpr Family propSpeed = {
    .shape = {.type = Stored::F64,
              .name = "rpm_prop",
              .meaning = "propeller speed",
              .unit = "rpm",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/flightmodel/engine/POINT_tacrad">(0),
              .factor = 60 / revolution},
    .offsets = {0x2400, 0x2500, 0, 0},
};
constexpr Family propRatio = {
    .shape = {.type = Stored::F64,
              .name = "rpm_ratio_prop",
              .meaning = "propeller speed as a share of the maximum",
              .unit = "%",
              .unitScale = 100,
              .cycle = Cycle::C1,
              .prepared = propSpeedShares,
              .inputs = sourcesOf<Float<"sim/aircraft/engine/acf_RSC_redline_eng">, propRpm>,
              .prepare = TakeShares,
              .note = "0 when the aircraft has no redline",
              .elsewhere = "before 9.55 from the speed in radians a second"},
    .offsets = {0x2408, 0x2508, 0, 0},
};
constexpr Family engineSpeed = {
    .shape = {.type = Stored::U16,
              .name = "rpm_eng",
              .meaning = "engine speed",
              .unit = "rpm",
              .cycle = Cycle::C1,
              .source = FloatElement<"sim/cockpit2/engine/indicators/engine_speed_rpm">(0)},
    .offsets = {0x10708, 0x1070A, 0, 0},
};
constexpr auto rotor =
    std::to_array<OffsetRow>({{.offset = 0x0908,
                               .type = Stored::S32,
                               .name = "rotor_speed",
                               .meaning = "rotor speed",
                               .unit = "rpm",
                               .unitScale = 1 / perPercent,
                               .cycle = Cycle::C1,
                               .source = FloatElement<"sim/cockpit2/engine/indicators/prop_speed_rpm">(0),
                               .factor = perPercent}});

// --- What is built in ---------------------------------------------------------------------------------

// The simulator's numbers are those that 11.40 and later list (8, the fixed turbine, is their last); the older
// lists state none, and a number beyond them counts as a jet. Clients: 0 piston, 1 jet, 2 none, 3 helicopter
// turbine, 4 rocket, 5 turboprop. Electric motors count as piston engines; only those have magnetos.
double EngineType(double simulatorType) {
  constexpr double types[] = {0, 0, 5, 0, 1, 1, 4, 4, 5};
  const int type = static_cast<int>(simulatorType);
  return type >= 0 && type < static_cast<int>(std::size(types)) ? types[type] : 1;
}

constexpr Source engineTypes = IntElement<"sim/aircraft/prop/acf_en_type">(0);

constexpr Choice engineKinds[] = {
    {0, "piston or electric"}, {1, "jet"}, {4, "rocket"}, {5, "turboprop or turboshaft"}};

constexpr auto installation = std::to_array<OffsetRow>({{.offset = 0x0609,
                                                         .type = Stored::U8,
                                                         .name = "engine_type",
                                                         .meaning = "engine type",
                                                         .choices = engineKinds,
                                                         .cycle = Cycle::C313,
                                                         .source = engineTypes,
                                                         .convert = EngineType,
                                                         .readOnly = true},
                                                        {.offset = 0x0AEC,
                                                         .type = Stored::U16,
                                                         .name = "engine_count",
                                                         .meaning = "number of engines",
                                                         .cycle = Cycle::C313,
                                                         .source = Int<"sim/aircraft/engine/acf_num_engines">,
                                                         .readOnly = true}});

constexpr auto rows =
    Joined(EngineRows<running, running4>(), EngineRows<n2Word, n2, n2Corrected>(), EngineRows<n1Word, n1>(),
           EngineRows<fuelFlowWord, fuelFlow, fuelFlowSecond>(), EngineRows<oilTemperature>(),
           EngineRows<oilPressureWord, oilPressure>(), EngineRows<pressureRatioWord, pressureRatio>(),
           EngineRows<exhaustWord, exhaust>(), EngineRows<turbineTemperature>(),
           EngineRows<manifoldWord, manifold>(), EngineRows<oilQuantity>(), EngineRows<vibration>(),
           EngineRows<hydraulicPressure, hydraulicPressureRear>(), EngineRows<hydraulicQuantity>(), rotor,
           EngineRows<torque>(), EngineRows<torqueRatio>(), EngineRows<thrust, propThrust>(),
           EngineRows<propSpeed>(), EngineRows<propRatio>(), EngineRows<engineSpeed>(), installation);

}  // namespace

const RowTable engineRows = {"Engines", rows};

int PresentEngineType() { return static_cast<int>(EngineType(ReadSource(engineTypes))); }
