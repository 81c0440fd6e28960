#include "driver/assembler.h"

namespace ta51 {

Assembler::~Assembler() {
  for (FILE* file : {SizeFile, BodyFile, FinalObjectStream}) {
    if (file != nullptr) std::fclose(file);
  }
  if (ObjectStream != nullptr && ObjectStream != BodyFile && ObjectStream != FinalObjectStream)
    std::fclose(ObjectStream);
  if (ListStream != nullptr && ListStream != console.out && ListStream != console.err) std::fclose(ListStream);
}

}  // namespace ta51
