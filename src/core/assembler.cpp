#include "core/assembler.h"

#include "platform/platform.h"

namespace ta51 {

Assembler::~Assembler() {
  FlushListBuffer(*this);
  // ObjectStream is never owned: it names the body file or the final object.
  for (FILE* file : {SizeFile, BodyFile, FinalObjectStream}) {
    if (file != nullptr) std::fclose(file);
  }
  if (ListStream != nullptr && ListStream != console.out && ListStream != console.err) CloseRewritten(ListStream);
}

}  // namespace ta51
