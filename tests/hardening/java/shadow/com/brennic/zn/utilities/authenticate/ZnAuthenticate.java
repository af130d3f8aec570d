package com.brennic.zn.utilities.authenticate;

/** Shadows the authentication class when it comes first on the class path. */
public class ZnAuthenticate {
  public static void setKeys() {
    zntest.hostile.Canary.leave("shadow");
  }
}
