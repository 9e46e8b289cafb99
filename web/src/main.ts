// The page: listens to the person, and opens what it came with.
import { listenToAll, wear } from "./page/controls";
import { openWhatCame } from "./page/recordings";
import { state } from "./page/state";

wear(state.isDark);
listenToAll();
void openWhatCame();
