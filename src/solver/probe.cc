// Vexil - exact integer optimization on lattices.
#include "solver/probe.h"

namespace vexil::solver {
namespace {

std::vector<ZZ> inZZ(const std::vector<std::int64_t>& numbers) {
  return {numbers.begin(), numbers.end()};
}

}  // namespace

ItemSystem<ZZ> forProbe(const ItemSystem<std::int64_t>& system) {
  return {system.parameters,
          system.coordinates,
          system.forms,
          system.count,
          inZZ(system.coefficient),
          inZZ(system.offset),
          inZZ(system.lower),
          inZZ(system.upper),
          {inZZ(system.ranges.lower), inZZ(system.ranges.upper)},
          system.parameterItem,
          system.goalForm,
          system.goalSide,
          system.objective};
}

FormSystem<ZZ> forProbe(const FormSystem<std::int64_t>& system) {
  return {system.dimension,
          system.count,
          inZZ(system.matrix),
          inZZ(system.offset),
          inZZ(system.lower),
          inZZ(system.upper),
          system.artificialLower,
          system.artificialUpper,
          system.kind,
          system.source,
          system.hasObjective,
          inZZ(system.objective),
          ZZ(system.objectiveOffset),
          system.ordered};
}

}  // namespace vexil::solver
